// A second process for tests that need one: started from an executable of
// the build with arguments, waited for or killed without warning.
#pragma once

#include <string>
#include <vector>

#if defined(_WIN32)
#    include <windows.h>
#else
#    include <signal.h>
#    include <spawn.h>
#    include <sys/wait.h>
#    include <unistd.h>
extern char** environ;
#endif

namespace kt::test {

class ChildProcess {
public:
    ChildProcess(const std::string& executable, const std::vector<std::string>& arguments) {
#if defined(_WIN32)
        std::string line = "\"" + executable + "\"";
        for (const std::string& argument : arguments)
            line += " \"" + argument + "\"";
        STARTUPINFOA startup = {};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION info = {};
        if (CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                           &startup, &info)) {
            CloseHandle(info.hThread);
            process = info.hProcess;
        }
#else
        std::vector<char*> argv = {const_cast<char*>(executable.c_str())};
        for (const std::string& argument : arguments)
            argv.push_back(const_cast<char*>(argument.c_str()));
        argv.push_back(nullptr);
        if (posix_spawn(&process, executable.c_str(), nullptr, nullptr, argv.data(), environ) != 0)
            process = -1;
#endif
    }
    ~ChildProcess() {
        if (Started() && !finished)
            Kill();
#if defined(_WIN32)
        if (process != nullptr)
            CloseHandle(process);
#endif
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

#if defined(_WIN32)
    bool Started() const { return process != nullptr; }
#else
    bool Started() const { return process > 0; }
#endif

    // The exit code, after the process has ended.
    int Wait() {
        finished = true;
#if defined(_WIN32)
        WaitForSingleObject(process, INFINITE);
        DWORD code = 0;
        GetExitCodeProcess(process, &code);
        return static_cast<int>(code);
#else
        int status = 0;
        waitpid(process, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
    }

    // Ends the process at once, wherever it is, and waits until it is gone.
    void Kill() {
#if defined(_WIN32)
        TerminateProcess(process, 99);
#else
        kill(process, SIGKILL);
#endif
        Wait();
    }

private:
#if defined(_WIN32)
    HANDLE process = nullptr;
#else
    pid_t process = -1;
#endif
    bool finished = false;
};

}  // namespace kt::test
