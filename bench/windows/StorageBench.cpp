// Compound storages of the DLL under Wine, each against the platform's own
// OLE calls on the same kind of storage: 100 MiB written and read back in
// 64 KiB blocks through a storage's stream and through the raw IStream, and
// a storage of 1,000 streams opened and enumerated.
#include <cstdio>
#include <string>
#include <vector>

#include "bench/harness/TimingHarness.h"
#include "kticore/storage/CompoundStorage.h"

namespace {

constexpr ULONG kBlockSize = 64 * 1024;
constexpr ULONG kBlocks = 1600;  // 100 MiB
constexpr int kStreams = 1000;
constexpr DWORD kChildMode = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;

// A compound file in the temporary directory that goes with its storage.
IXStorage* NewScratchStorage() {
    return new_Storage(nullptr, XSTG_TEMPFILE | XSTG_DELETEONRELEASE);
}

void StreamBlocks() {
    std::vector<char> source(kBlockSize, 'k'), back(kBlockSize);
    const kt::bench::PairOfFigures figures = kt::bench::NanosecondsPerCallInTurn(
        [&] {
            IXStorage* storage = NewScratchStorage();
            IXStream* stream = storage->CreateStream("data");
            for (ULONG i = 0; i < kBlocks; ++i)
                stream->Write(source.data(), kBlockSize);
            stream->Seek(0, 0);
            for (ULONG i = 0; i < kBlocks; ++i)
                stream->Read(back.data(), kBlockSize);
            stream->Release();
            storage->Release();
        },
        [&] {
            IXStorage* storage = NewScratchStorage();
            auto* ole = static_cast<IStorage*>(Storage_GetOLEStorage(storage));
            IStream* stream = nullptr;
            ole->CreateStream(L"data", kChildMode | STGM_CREATE, 0, 0, &stream);
            ULONG moved = 0;
            for (ULONG i = 0; i < kBlocks; ++i)
                stream->Write(source.data(), kBlockSize, &moved);
            stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
            for (ULONG i = 0; i < kBlocks; ++i)
                stream->Read(back.data(), kBlockSize, &moved);
            stream->Release();
            ole->Release();
            storage->Release();
        },
        1, 3);
    kt::bench::PrintRatio("Stream/100MiB (ms)", "raw IStream", figures.ours / 1e6,
                          figures.theirs / 1e6);
}

void OpenAndEnumerate() {
    IXStorage* made = new_Storage(nullptr, XSTG_TEMPFILE);
    for (int i = 0; i < kStreams; ++i)
        made->CreateStream(("stream " + std::to_string(i)).c_str())->Release();
    const std::wstring path = made->GetName();
    made->Release();
    size_t ourCount = 0, theirCount = 0;
    const kt::bench::PairOfFigures figures = kt::bench::NanosecondsPerCallInTurn(
        [&] {
            IXStorage* storage = open_Storage(path.c_str(), 1);
            CTEnum<const char*>* names = storage->EnumStreams();
            const char* name = nullptr;
            for (ourCount = 0; names->Next(1, &name, nullptr); ++ourCount) {
            }
            names->Release();
            storage->Release();
        },
        [&] {
            IStorage* storage = nullptr;
            StgOpenStorage(path.c_str(), nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, nullptr, 0,
                           &storage);
            IEnumSTATSTG* elements = nullptr;
            storage->EnumElements(0, nullptr, 0, &elements);
            STATSTG element;
            for (theirCount = 0; elements->Next(1, &element, nullptr) == S_OK; ++theirCount)
                CoTaskMemFree(element.pwcsName);
            elements->Release();
            storage->Release();
        },
        1, 9);
    DeleteFileW(path.c_str());
    if (ourCount != kStreams || theirCount != kStreams)
        std::printf("enumerations counted %zu and %zu of %d streams\n", ourCount, theirCount,
                    kStreams);
    kt::bench::PrintRatio("Open+enumerate 1000 (us)", "raw OLE", figures.ours / 1e3,
                          figures.theirs / 1e3);
}

}  // namespace

int main() {
    kt::bench::PrintRatioHeader("(unit)");  // each case names its unit
    StreamBlocks();
    OpenAndEnumerate();
    return 0;
}
