// A second process for the tests, doing one thing by its first argument:
//
//   write NAME            open NAME for writing and write a byte; the exit
//                         code is 0, or 10 + the failure code
//   writable NAME         the exit code is Fio_IsWritableFile(NAME)
//   hold NAME MS          lock NAME non-exclusively, make NAME.held, wait MS
//   commit-loop NAME SIZE replace NAME again and again by SIZE bytes of one
//                         letter, the next letter each time, until killed;
//                         after the N-th commit make the empty file NAME.N
//   pass-through IN OUT   read the stored variant in file IN and store it in
//                         file OUT, in a process that registers no class
//   cut NAME SIZE         cut NAME to SIZE bytes by the system's call; the
//                         exit code is 0, or 3 when the system refused
//   cut-beneath NAME SIZE the same from beneath the system's rules: under
//                         Wine by a Unix process (4 elsewhere on Windows)
//   storage-commit-loop NAME  (Windows) in the compound file NAME opened for
//                         writing, give the streams "a" and "b" the content
//                         of the next generation and commit, until killed;
//                         make the empty file NAME.N- before the N-th
//                         commit and NAME.N after it
//   hold-all NAME         with a critical section alive, take all of them
//                         (Wait_All), make the file NAME, wait to be killed
//   count-in-section NAME MS  count in the file NAME under a critical
//                         section for MS ms; write the steps to NAME.helper
//   wait-all MS           with a critical section alive, the exit code is
//                         Wait_All(MS)
//   end-holding-all -     take all sections, release the last section, and
//                         end still holding them
//   enter-holding-all NAME  while a thread holds all sections and another
//                         waits to enter section A, the first enters A too;
//                         make the file NAME when it got in
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "kticore/core/Threads.h"
#include "kticore/files/File.h"
#include "kticore/files/FileLocks.h"
#include "kticore/files/FileUtilities.h"
#include "kticore/streams/Stream.h"
#include "tests/support/LockedCount.h"
#if defined(_WIN32)
#    include <windows.h>

#    include "kticore/storage/Storage.h"
#endif

namespace {

std::basic_string<KTWCHAR> Wide(const char* text) {
    std::basic_string<KTWCHAR> wide;
    for (; *text != 0; ++text)
        wide += static_cast<KTWCHAR>(static_cast<unsigned char>(*text));
    return wide;
}

int Write(const std::basic_string<KTWCHAR>& name) {
    try {
        IXFile* file = Fio_Open(name.c_str(), FIO_WRITE | FIO_KEEP);
        file->WriteByte('!');
        file->Release();
        return 0;
    } catch (const CXException& failure) {
        return 10 + static_cast<int>(failure.code);
    }
}

void CommitLoop(const std::basic_string<KTWCHAR>& name, size_t size) {
    for (unsigned generation = 0;; ++generation) {
        const std::vector<char> content(size, static_cast<char>('A' + generation % 26));
        IXOutFile* out = Fio_OpenOut(name.c_str(), 0);
        out->Write(content.data(), static_cast<DWORD>(size));
        out->Commit();
        out->Release();
        const std::string count = "." + std::to_string(generation + 1);
        const std::basic_string<KTWCHAR> marker = name + Wide(count.c_str());
        Fio_Open(marker.c_str(), FIO_WRITE)->Release();
    }
}

void PassThrough(const std::basic_string<KTWCHAR>& in, const std::basic_string<KTWCHAR>& out) {
    IXFile* source = Fio_Open(in.c_str(), 0);
    std::vector<char> bytes(source->GetLength());
    source->Read(bytes.data(), static_cast<DWORD>(bytes.size()));
    source->Release();
    IXStream* stream = new_StreamOnMemory();
    stream->Write(bytes.data(), static_cast<unsigned>(bytes.size()));
    stream->Seek(0, 0);
    CKTVariant value;
    stream->ReadVariant(&value);
    IXStream* again = new_StreamOnMemory();
    again->WriteVariant(&value);
    IMemBlock* block = nullptr;
    again->QueryInterface(typeid(IMemBlock), reinterpret_cast<void**>(&block));
    IXOutFile* target = Fio_OpenOut(out.c_str(), 0);
    target->Write(block->GetBlockData(), block->GetBlockSize());
    target->Commit();
    target->Release();
    block->Release();
    again->Release();
    stream->Release();
}

// Exit codes of the cuts.
constexpr int kCut = 0;
constexpr int kRefused = 3;
constexpr int kNotUnderWine = 4;

#if defined(_WIN32)
// Generation G: "a" and "b" each hold 5,000 * (G % 7 + 1) bytes of the
// letter of G, so that the streams move between the file's sectors.
void StorageCommitLoop(const std::basic_string<KTWCHAR>& name) {
    IXStorage* root = open_Storage(name.c_str(), 0);
    for (unsigned generation = 0;; ++generation) {
        const std::vector<char> content(5000 * (generation % 7 + 1),
                                        static_cast<char>('A' + generation % 26));
        for (const char* stream : {"a", "b"}) {
            IXStream* out = root->CreateStream(stream);
            out->Write(content.data(), static_cast<unsigned>(content.size()));
            out->Release();
        }
        const std::string count = "." + std::to_string(generation + 1);
        Fio_Open((name + Wide((count + "-").c_str())).c_str(), FIO_WRITE)->Release();
        root->Commit();
        Fio_Open((name + Wide(count.c_str())).c_str(), FIO_WRITE)->Release();
    }
}
#endif

int Cut(const char* name, const char* size) {
    std::error_code error;
    std::filesystem::resize_file(name, std::strtoull(size, nullptr, 10), error);
    return error ? kRefused : kCut;
}

#if defined(_WIN32)
// Windows keeps a mapped file whole; under Wine a Unix process can still cut
// it, as a file server can cut a file beneath its Windows clients.
int CutBeneath(const char* name, const char* size) {
    using UnixFileName = char*(CDECL*)(const WCHAR*);
    const auto unixFileName = reinterpret_cast<UnixFileName>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA("kernel32"), "wine_get_unix_file_name")));
    if (unixFileName == nullptr)
        return kNotUnderWine;
    const std::basic_string<KTWCHAR> wide = Wide(name);
    char* unixName = unixFileName(reinterpret_cast<const WCHAR*>(wide.c_str()));
    if (unixName == nullptr)
        return kRefused;
    // Wine hands a Unix process the standard handles as Unix files, and a
    // handle that has none behind it fails the start: it gets the null device.
    // Wine neither waits for a Unix process nor passes its exit code on: the
    // size tells, once it has come.
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    const HANDLE nothing = CreateFileA("NUL", GENERIC_READ | GENERIC_WRITE, 3, &inherited,
                                       OPEN_EXISTING, 0, nullptr);
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = startup.hStdOutput = startup.hStdError = nothing;
    std::string line = std::string("Z:\\usr\\bin\\truncate -s ") + size + " \"" + unixName + "\"";
    HeapFree(GetProcessHeap(), 0, unixName);
    PROCESS_INFORMATION process = {};
    const bool started = CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                        nullptr, &startup, &process);
    CloseHandle(nothing);
    if (!started)
        return kRefused;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    const std::uintmax_t wanted = std::strtoull(size, nullptr, 10);
    for (int i = 0; i < 500; ++i) {
        std::error_code error;
        if (std::filesystem::file_size(name, error) == wanted)
            return kCut;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return kRefused;
}
#else
int CutBeneath(const char* name, const char* size) { return Cut(name, size); }
#endif

void HoldAll(const char* marker) {
    CriticalSection_New();  // alive until the process is killed
    Wait_All(-1);
    std::ofstream{marker};
    std::this_thread::sleep_for(std::chrono::minutes(1));
}

int WaitAll(const char* milliseconds) {
    ICritSect* section = CriticalSection_New();
    const int result = Wait_All(std::atoi(milliseconds));
    if (result != KTWAIT_TIMEOUT)
        Wait_Release();
    section->Release();
    return result;
}

void EndHoldingAll() {
    ICritSect* section = CriticalSection_New();
    Wait_All(-1);
    section->Release();
}

// Deadlocks if a section is taken before the mutex: the waiting thread would
// then hold A while it waits for the mutex that the first one holds.
void EnterHoldingAll(const char* marker) {
    ICritSect* a = CriticalSection_New();
    Wait_All(-1);
    std::thread waiting([a] {
        a->Enter();
        a->Leave();
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    a->Enter();
    std::ofstream{marker};
    a->Leave();
    Wait_Release();
    waiting.join();
    a->Release();
}

void CountInSection(const char* name, const char* milliseconds) {
    ICritSect* section = CriticalSection_New();
    kt::test::CountInFile count{name};
    const long steps =
        kt::test::CountInSection(section, count, std::chrono::milliseconds(std::atoi(milliseconds)));
    section->Release();
    std::ofstream(std::string(name) + ".helper") << steps;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3)
        return 2;
    const std::string what = argv[1];
    const std::basic_string<KTWCHAR> name = Wide(argv[2]);
    if (what == "write")
        return Write(name);
    if (what == "writable")
        return Fio_IsWritableFile(name.c_str());
    if (what == "hold" && argc == 4) {
        Fio_LockFile(name.c_str(), false);
        if (Fio_LockCount(name.c_str(), false) != 1)
            return 3;
        IXFile* marker = Fio_Open((name + Wide(".held")).c_str(), FIO_WRITE);
        marker->Release();
        std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(argv[3])));
        return 0;
    }
    if (what == "pass-through" && argc == 4) {
        PassThrough(name, Wide(argv[3]));
        return 0;
    }
    if (what == "cut" && argc == 4)
        return Cut(argv[2], argv[3]);
    if (what == "cut-beneath" && argc == 4)
        return CutBeneath(argv[2], argv[3]);
#if defined(_WIN32)
    if (what == "storage-commit-loop") {
        StorageCommitLoop(name);
        return 0;
    }
#endif
    if (what == "hold-all") {
        HoldAll(argv[2]);
        return 0;
    }
    if (what == "wait-all")
        return WaitAll(argv[2]);
    if (what == "end-holding-all") {
        EndHoldingAll();
        return 0;
    }
    if (what == "enter-holding-all") {
        EnterHoldingAll(argv[2]);
        return 0;
    }
    if (what == "count-in-section" && argc == 4) {
        CountInSection(argv[2], argv[3]);
        return 0;
    }
    if (what == "commit-loop" && argc == 4) {
        CommitLoop(name, static_cast<size_t>(std::atol(argv[3])));
        return 0;
    }
    return 2;
}
