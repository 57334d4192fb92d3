// The memory stream against memcpy: 100 MB written as WriteDWord calls and
// read back with ReadDWord, and 100 MiB written and read back in 64 KiB
// blocks, each against memcpy of the same bytes out and back; and the round
// trip (write + read) of one stored variant of each kind.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <vector>

#include "bench/harness/RatioReporter.h"
#include "kticore/streams/Stream.h"

namespace {

constexpr ULONG kWords = 100 * 1000 * 1000 / 4;

void DWords_kticore(benchmark::State& state) {
    for (auto _ : state) {
        IXStream* stream = new_StreamOnMemory();
        for (ULONG i = 0; i < kWords; ++i)
            stream->WriteDWord(i);
        stream->Seek(0, 0);
        ULONG sum = 0;
        for (ULONG i = 0; i < kWords; ++i)
            sum += stream->ReadDWord();
        benchmark::DoNotOptimize(sum);
        stream->Release();
    }
    state.SetBytesProcessed(state.iterations() * 2 * std::int64_t{kWords} * 4);
}

void DWords_memcpy(benchmark::State& state) {
    std::vector<ULONG> source(kWords), back(kWords);
    for (ULONG i = 0; i < kWords; ++i)
        source[i] = i;
    for (auto _ : state) {
        std::vector<ULONG> block(kWords);  // the stream's block is new each time too
        std::memcpy(block.data(), source.data(), kWords * 4);
        std::memcpy(back.data(), block.data(), kWords * 4);
        benchmark::DoNotOptimize(back.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * 2 * std::int64_t{kWords} * 4);
}

BENCHMARK(DWords_kticore)->Unit(benchmark::kMillisecond);
BENCHMARK(DWords_memcpy)->Unit(benchmark::kMillisecond);

constexpr ULONG kBlockSize = 64 * 1024;
constexpr ULONG kBlocks = 1600;  // 100 MiB

void Blocks_kticore(benchmark::State& state) {
    std::vector<char> source(kBlockSize, 'k'), back(kBlockSize);
    for (auto _ : state) {
        IXStream* stream = new_StreamOnMemory();
        for (ULONG i = 0; i < kBlocks; ++i)
            stream->Write(source.data(), kBlockSize);
        stream->Seek(0, 0);
        for (ULONG i = 0; i < kBlocks; ++i)
            stream->Read(back.data(), kBlockSize);
        benchmark::DoNotOptimize(back.data());
        stream->Release();
    }
    state.SetBytesProcessed(state.iterations() * 2 * std::int64_t{kBlocks} * kBlockSize);
}

// Into a new block left as the allocator gives it, as the stream's is.
void Blocks_memcpy(benchmark::State& state) {
    std::vector<char> source(kBlockSize, 'k'), back(kBlockSize);
    for (auto _ : state) {
        const std::unique_ptr<char[]> block(new char[std::size_t{kBlocks} * kBlockSize]);
        for (ULONG i = 0; i < kBlocks; ++i)
            std::memcpy(block.get() + std::size_t{i} * kBlockSize, source.data(), kBlockSize);
        for (ULONG i = 0; i < kBlocks; ++i)
            std::memcpy(back.data(), block.get() + std::size_t{i} * kBlockSize, kBlockSize);
        benchmark::DoNotOptimize(back.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * 2 * std::int64_t{kBlocks} * kBlockSize);
}

BENCHMARK(Blocks_kticore)->Unit(benchmark::kMillisecond);
BENCHMARK(Blocks_memcpy)->Unit(benchmark::kMillisecond);

CKTVariant SampleOfKind(int kind) {
    static unsigned char bytes[64] = {1, 2, 3};
    switch (kind) {
    case KTVT_STR: return CKTVariant("a parameter value");
    case KTVT_WSTR: return CKTVariant(KTW("a parameter value"));
    case KTVT_BLOB: return CKTVariant(tagKTBLOB{sizeof bytes, bytes});
    case KTVT_RRECT: return CKTVariant(tagRRECT{1, 2, 3, 4});
    default: {
        CKTVariant value(12345);
        value.vt = static_cast<unsigned short>(kind);
        return value;
    }
    }
}

void VariantRoundTrip_kticore(benchmark::State& state) {
    const CKTVariant value = SampleOfKind(static_cast<int>(state.range(0)));
    IXStream* stream = new_StreamOnMemory();
    CKTVariant read;
    for (auto _ : state) {
        stream->Seek(0, 0);
        stream->WriteVariant(&value);
        stream->Seek(0, 0);
        stream->ReadVariant(&read);
        benchmark::DoNotOptimize(read.vt);
    }
    stream->Release();
}

// The number kinds, text, blob and double rectangle: the scalar kinds all take
// the one path.
BENCHMARK(VariantRoundTrip_kticore)->DenseRange(1, 9)->Arg(10)->Arg(11)->Arg(16)->Arg(17)->Arg(19);

}  // namespace

int main(int argc, char** argv) { return kt::bench::RunWithRatios(argc, argv); }
