// A document saved through the document storage, whose streams ask a progress
// sink at every call, against the same document saved through the plain
// storage, in the same run: 4 sub-storages of 10 streams, each stream 256
// small typed writes, 16 stored texts and one 4 KiB block. Each save goes
// into a new compound file in memory, so that the disk's noise does not hide
// the cost of the questions; short saves, best of many rounds, for a machine
// that other work shares.
#include <string>
#include <vector>

#include "bench/harness/TimingHarness.h"
#include "kticore/storage/CompoundStorage.h"
#include "kticore/storage/DocStorage.h"

namespace {

constexpr int kSubStorages = 4;
constexpr int kStreamsEach = 10;
constexpr int kTypedWrites = 256;
constexpr int kTexts = 16;
constexpr unsigned kBlockSize = 4096;

// A host's sink that never stops, as a save runs to its end.
class PatientSink final : public KTIFC::IProgress {
public:
    ULONG AddRef() override { return 2; }
    ULONG Release() override { return 1; }
    int QueryInterface(const type_info&, void** out) override {
        if (out != nullptr)
            *out = nullptr;
        return 0;
    }
    int IsCancelled() override { return 0; }
    void SetRange(int, int) override {}
};

void SaveDocument(IXStorage* document) {
    const std::vector<char> block(kBlockSize, 'd');
    const CKTVariant text("a stored text of the document");
    for (int s = 0; s < kSubStorages; ++s) {
        IXStorage* part = document->CreateStorage(("part " + std::to_string(s)).c_str());
        for (int t = 0; t < kStreamsEach; ++t) {
            IXStream* stream = part->CreateStream(("stream " + std::to_string(t)).c_str());
            for (int i = 0; i < kTypedWrites; ++i)
                stream->WriteDWord(static_cast<ULONG>(i));
            for (int i = 0; i < kTexts; ++i)
                stream->WriteVariant(&text);
            stream->Write(block.data(), kBlockSize);
            stream->Release();
        }
        part->Release();
    }
}

IXStorage* NewScratchStorage() { return new_Storage(nullptr, 0); }

}  // namespace

int main() {
    PatientSink sink;
    kt::bench::PrintRatioHeader("ms");
    const kt::bench::PairOfFigures figures = kt::bench::NanosecondsPerCallInTurn(
        [&] {
            IXStorage* storage = NewScratchStorage();
            IXStorage* document = nullptr;
            new_CIXDocStorage(storage, &sink, &document, 0);
            SaveDocument(document);
            document->Release();
            storage->Release();
        },
        [&] {
            IXStorage* storage = NewScratchStorage();
            SaveDocument(storage);
            storage->Release();
        },
        1, 101);
    kt::bench::PrintRatio("Document save", "plain storage", figures.ours / 1e6,
                          figures.theirs / 1e6);
    return 0;
}
