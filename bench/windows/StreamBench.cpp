// The memory stream figures of the DLL under Wine: 100 MB as WriteDWord and
// ReadDWord calls and 100 MiB in 64 KiB blocks, each against memcpy of the
// same bytes out and back, and the round trip of one stored variant per kind.
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "bench/harness/TimingHarness.h"
#include "kticore/streams/Stream.h"

namespace {

constexpr ULONG kWords = 100 * 1000 * 1000 / 4;

void DWords() {
    std::vector<ULONG> source(kWords), back(kWords);
    for (ULONG i = 0; i < kWords; ++i)
        source[i] = i;
    const double ours = kt::bench::NanosecondsPerCall(
        [] {
            IXStream* stream = new_StreamOnMemory();
            for (ULONG i = 0; i < kWords; ++i)
                stream->WriteDWord(i);
            stream->Seek(0, 0);
            volatile ULONG sum = 0;
            for (ULONG i = 0; i < kWords; ++i)
                sum = sum + stream->ReadDWord();
            stream->Release();
        },
        1, 5);
    const double theirs = kt::bench::NanosecondsPerCall(
        [&] {
            std::vector<ULONG> block(kWords);
            std::memcpy(block.data(), source.data(), kWords * 4);
            std::memcpy(back.data(), block.data(), kWords * 4);
            const ULONG* volatile sink = back.data();
            (void)sink;
        },
        1, 5);
    kt::bench::PrintRatio("DWords/100MB (ms)", "memcpy", ours / 1e6, theirs / 1e6);
    std::printf("%-28s %.0f MB/s written and read back (memcpy %.0f MB/s)\n", "",
                2 * 100e3 / (ours / 1e6), 2 * 100e3 / (theirs / 1e6));
}

void Blocks() {
    constexpr ULONG kBlockSize = 64 * 1024;
    constexpr ULONG kBlocks = 1600;  // 100 MiB
    std::vector<char> source(kBlockSize, 'k'), back(kBlockSize);
    const double ours = kt::bench::NanosecondsPerCall(
        [&] {
            IXStream* stream = new_StreamOnMemory();
            for (ULONG i = 0; i < kBlocks; ++i)
                stream->Write(source.data(), kBlockSize);
            stream->Seek(0, 0);
            for (ULONG i = 0; i < kBlocks; ++i)
                stream->Read(back.data(), kBlockSize);
            stream->Release();
        },
        1, 5);
    // Into a new block left as the allocator gives it, as the stream's is.
    const double theirs = kt::bench::NanosecondsPerCall(
        [&] {
            const std::unique_ptr<char[]> block(new char[std::size_t{kBlocks} * kBlockSize]);
            for (ULONG i = 0; i < kBlocks; ++i)
                std::memcpy(block.get() + std::size_t{i} * kBlockSize, source.data(), kBlockSize);
            for (ULONG i = 0; i < kBlocks; ++i)
                std::memcpy(back.data(), block.get() + std::size_t{i} * kBlockSize, kBlockSize);
            const char* volatile sink = back.data();
            (void)sink;
        },
        1, 5);
    kt::bench::PrintRatio("Blocks/100MiB (ms)", "memcpy", ours / 1e6, theirs / 1e6);
}

void VariantRoundTrips() {
    static unsigned char bytes[64] = {1, 2, 3};
    const CKTVariant samples[] = {CKTVariant(12345), CKTVariant(2.5), CKTVariant("a parameter value"),
                                  CKTVariant(KTW("a parameter value")), CKTVariant(tagRRECT{1, 2, 3, 4}),
                                  CKTVariant(tagKTBLOB{sizeof bytes, bytes})};
    IXStream* stream = new_StreamOnMemory();
    for (const CKTVariant& value : samples) {
        CKTVariant read;
        const double ns = kt::bench::NanosecondsPerCall(
            [&] {
                stream->Seek(0, 0);
                stream->WriteVariant(&value);
                stream->Seek(0, 0);
                stream->ReadVariant(&read);
            },
            1000000);
        std::printf("VariantRoundTrip/%-11d %-16s %12.1f\n", value.vt, "-", ns);
    }
    stream->Release();
}

}  // namespace

int main() {
    kt::bench::PrintRatioHeader("ms");
    DWords();
    Blocks();
    VariantRoundTrips();
}
