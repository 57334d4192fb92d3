// The mapped file of the DLL under Wine against the buffered read loop that it
// replaces: 256 MiB as ReadDWord calls and 100 MiB of text line by line,
// against a reader of the same shape over ReadFile into a 64 KiB buffer.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "bench/harness/BufferedReader.h"
#include "bench/harness/TimingHarness.h"
#include "kticore/files/File.h"
#include "kticore/files/FileUtilities.h"

namespace {

constexpr DWORD kBinarySize = 256u << 20;
constexpr DWORD kTextSize = 100u << 20;
constexpr DWORD kChunk = 64 * 1024;

std::wstring MakeFile(const wchar_t* leaf, DWORD size, bool text) {
    wchar_t directory[MAX_PATH];
    GetTempPathW(MAX_PATH, directory);
    const std::wstring name = std::wstring(directory) + leaf;
    const HANDLE file = CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    std::vector<char> chunk(kChunk);
    for (size_t i = 0; i < chunk.size(); ++i)
        chunk[i] = text ? (i % 61 == 60 ? '\n' : static_cast<char>('a' + i % 26)) : static_cast<char>(i * 7);
    DWORD written = 0;
    for (DWORD done = 0; done < size; done += kChunk)
        WriteFile(file, chunk.data(), kChunk, &written, nullptr);
    CloseHandle(file);
    return name;
}

// ReadFile into the peer's buffer.
class FileHandle {
public:
    explicit FileHandle(const std::wstring& name)
        : file(CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                           FILE_FLAG_SEQUENTIAL_SCAN, nullptr)) {}
    FileHandle(FileHandle&& other) noexcept : file(other.file) { other.file = INVALID_HANDLE_VALUE; }
    ~FileHandle() {
        if (file != INVALID_HANDLE_VALUE)
            CloseHandle(file);
    }
    size_t Read(char* buffer, size_t size) {
        DWORD got = 0;
        ReadFile(file, buffer, static_cast<DWORD>(size), &got, nullptr);
        return got;
    }

private:
    HANDLE file;
};

using kt::bench::IBufferedReader;
using CReadFileBuffered = kt::bench::CBufferedReader<FileHandle>;

IBufferedReader* volatile peerMaker = nullptr;  // keeps the peer's calls virtual

void ReadDWords(const std::wstring& name) {
    const double ours = kt::bench::NanosecondsPerCall(
        [&] {
            IXFile* file = Fio_Open(name.c_str(), 0);
            volatile DWORD sum = 0;
            for (DWORD i = 0; i < kBinarySize / 4; ++i)
                sum = sum + file->ReadDWord();
            file->Release();
        },
        1, 3);
    const double theirs = kt::bench::NanosecondsPerCall(
        [&] {
            IBufferedReader* file = new CReadFileBuffered(FileHandle(name));
            peerMaker = file;
            file = peerMaker;
            volatile DWORD sum = 0;
            for (DWORD i = 0; i < kBinarySize / 4; ++i)
                sum = sum + file->ReadDWord();
            delete file;
        },
        1, 3);
    kt::bench::PrintRatio("ReadDWords/256MiB (ms)", "ReadFile 64K", ours / 1e6, theirs / 1e6);
}

void ReadLines(const std::wstring& name) {
    static char line[4098];
    const double ours = kt::bench::NanosecondsPerCall(
        [&] {
            IXFile* file = Fio_Open(name.c_str(), 0);
            const DWORD length = file->GetLength();
            while (file->GetPosition() < length)
                file->ReadLine(line, 4096);
            file->Release();
        },
        1, 3);
    const double theirs = kt::bench::NanosecondsPerCall(
        [&] {
            IBufferedReader* file = new CReadFileBuffered(FileHandle(name));
            peerMaker = file;
            file = peerMaker;
            while (!file->AtEnd())
                file->ReadLine(line, 4096);
            delete file;
        },
        1, 3);
    kt::bench::PrintRatio("ReadLines/100MiB (ms)", "ReadFile 64K", ours / 1e6, theirs / 1e6);
}

}  // namespace

int main() {
    const std::wstring binary = MakeFile(L"kticore_bench.bin", kBinarySize, false);
    const std::wstring text = MakeFile(L"kticore_bench.txt", kTextSize, true);
    kt::bench::PrintRatioHeader("ms");
    ReadDWords(binary);
    ReadLines(text);
    DeleteFileW(binary.c_str());
    DeleteFileW(text.c_str());
}
