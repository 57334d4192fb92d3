// An application started with its main thread held, so that modules can be
// loaded and functions run in it before its own first instruction; ended
// with it when it is never let go.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace kttool {

class SuspendedApp {
public:
    // Throws std::runtime_error when the application cannot be started.
    SuspendedApp(const std::wstring& executable, const std::vector<std::wstring>& arguments);
    ~SuspendedApp();
    SuspendedApp(const SuspendedApp&) = delete;
    SuspendedApp& operator=(const SuspendedApp&) = delete;

    // LoadLibraryW of `path` on a thread of the application, as Call;
    // whether the module is then among the application's.
    bool Load(const std::wstring& path);
    // The address in the application of what stands at `address` in the
    // module `local` of this process, which the application loaded from the
    // same file; null when it did not.
    LPTHREAD_START_ROUTINE Counterpart(HMODULE local, const void* address) const;
    // `start` run on a thread of the application with a copy of `data` as
    // its argument; the thread's exit code. Throws std::runtime_error when
    // the thread cannot be made or has not ended within a minute.
    DWORD Call(LPTHREAD_START_ROUTINE start, const void* data, size_t size);
    // Lets the main thread go and waits for the application's end: its exit
    // code.
    DWORD RunToEnd();

private:
    PROCESS_INFORMATION process = {};
    bool running = false;
};

// The command line that hands `arguments` to the C runtime of a program
// unchanged, the executable's path first.
std::wstring CommandLineOf(const std::wstring& executable, const std::vector<std::wstring>& arguments);

}  // namespace kttool
