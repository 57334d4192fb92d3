// A mapped file against the buffered read loop that it replaces: 256 MiB read
// as ReadDWord calls, and a 100 MiB text read line by line, against a reader
// of the same shape (virtual ReadDWord and ReadLine) over read() into a 64 KiB
// buffer, on the same files in the same run. The files are written before
// timing, so both sides read from the cache.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "bench/harness/BufferedReader.h"
#include "bench/harness/RatioReporter.h"
#include "kticore/files/File.h"
#include "kticore/files/FileUtilities.h"

namespace {

constexpr size_t kBinarySize = 256u << 20;
constexpr size_t kTextSize = 100u << 20;
constexpr size_t kChunk = 64 * 1024;

struct BenchFile {
    std::string path;
    std::basic_string<KTWCHAR> wide;
};

BenchFile MakeFile(const char* leaf, size_t size, bool text) {
    BenchFile file;
    file.path = std::string("/tmp/") + leaf;
    file.wide.assign(file.path.begin(), file.path.end());
    std::FILE* out = std::fopen(file.path.c_str(), "wb");
    std::vector<char> chunk(kChunk);
    for (size_t i = 0; i < chunk.size(); ++i)
        chunk[i] = text ? (i % 61 == 60 ? '\n' : static_cast<char>('a' + i % 26)) : static_cast<char>(i * 7);
    for (size_t written = 0; written < size; written += chunk.size())
        std::fwrite(chunk.data(), 1, chunk.size(), out);
    std::fclose(out);
    return file;
}

const BenchFile& Binary() {
    static const BenchFile file = MakeFile("kticore_bench.bin", kBinarySize, false);
    return file;
}

const BenchFile& Text() {
    static const BenchFile file = MakeFile("kticore_bench.txt", kTextSize, true);
    return file;
}

void ReadDWords_kticore(benchmark::State& state) {
    for (auto _ : state) {
        IXFile* file = Fio_Open(Binary().wide.c_str(), 0);
        DWORD sum = 0;
        for (size_t i = 0; i < kBinarySize / 4; ++i)
            sum += file->ReadDWord();
        benchmark::DoNotOptimize(sum);
        file->Release();
    }
    state.SetBytesProcessed(state.iterations() * std::int64_t{kBinarySize});
}

// read() into the peer's buffer.
class FileDescriptor {
public:
    explicit FileDescriptor(const std::string& path) : fd(open(path.c_str(), O_RDONLY)) {}
    FileDescriptor(FileDescriptor&& other) noexcept : fd(other.fd) { other.fd = -1; }
    ~FileDescriptor() {
        if (fd >= 0)
            close(fd);
    }
    size_t Read(char* buffer, size_t size) {
        const ssize_t got = read(fd, buffer, size);
        return got > 0 ? static_cast<size_t>(got) : 0;
    }

private:
    int fd;
};

using kt::bench::IBufferedReader;
using CReadBuffered = kt::bench::CBufferedReader<FileDescriptor>;

void ReadDWords_read64k(benchmark::State& state) {
    for (auto _ : state) {
        IBufferedReader* file = new CReadBuffered(FileDescriptor(Binary().path));
        benchmark::DoNotOptimize(file);
        DWORD sum = 0;
        for (size_t i = 0; i < kBinarySize / 4; ++i)
            sum += file->ReadDWord();
        benchmark::DoNotOptimize(sum);
        delete file;
    }
    state.SetBytesProcessed(state.iterations() * std::int64_t{kBinarySize});
}

void ReadLines_kticore(benchmark::State& state) {
    char line[4097];
    for (auto _ : state) {
        IXFile* file = Fio_Open(Text().wide.c_str(), 0);
        size_t lines = 0;
        const DWORD length = file->GetLength();
        while (file->GetPosition() < length) {
            file->ReadLine(line, 4096);
            ++lines;
        }
        benchmark::DoNotOptimize(lines);
        file->Release();
    }
    state.SetBytesProcessed(state.iterations() * std::int64_t{kTextSize});
}

void ReadLines_read64k(benchmark::State& state) {
    char line[4098];
    for (auto _ : state) {
        IBufferedReader* file = new CReadBuffered(FileDescriptor(Text().path));
        benchmark::DoNotOptimize(file);
        size_t lines = 0;
        while (!file->AtEnd()) {
            file->ReadLine(line, 4096);
            ++lines;
        }
        benchmark::DoNotOptimize(lines);
        delete file;
    }
    state.SetBytesProcessed(state.iterations() * std::int64_t{kTextSize});
}

BENCHMARK(ReadDWords_kticore)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadDWords_read64k)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadLines_kticore)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadLines_read64k)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    Binary();  // made and read into the cache before any timing
    Text();
    const int result = kt::bench::RunWithRatios(argc, argv);
    Fio_DeleteFile(Binary().wide.c_str());
    Fio_DeleteFile(Text().wide.c_str());
    return result;
}
