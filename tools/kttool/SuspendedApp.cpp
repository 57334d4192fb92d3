#include "tools/kttool/SuspendedApp.h"

#include <psapi.h>

#include <cwctype>
#include <stdexcept>
#include <string>

namespace kttool {
namespace {

// A load or the agent's start takes well under a second; a thread that has
// not ended by then is stuck, in a process that will be ended.
constexpr DWORD kCallMilliseconds = 60000;

std::string SystemMessage(DWORD error) {
    char* text = nullptr;
    FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                   nullptr, error, 0, reinterpret_cast<char*>(&text), 0, nullptr);
    std::string message = text != nullptr ? text : "error " + std::to_string(error);
    LocalFree(text);
    while (!message.empty() && (message.back() == '\n' || message.back() == '\r' || message.back() == '.'))
        message.pop_back();
    return message;
}

// One argument as the C runtime splits a command line: quoted where it
// holds blanks or quotes, with the backslashes before a quote doubled.
std::wstring Quoted(const std::wstring& argument) {
    if (!argument.empty() && argument.find_first_of(L" \t\n\v\"") == std::wstring::npos)
        return argument;
    std::wstring quoted = L"\"";
    size_t backslashes = 0;
    for (wchar_t character : argument) {
        if (character == L'\\') {
            ++backslashes;
            continue;
        }
        quoted.append(character == L'"' ? 2 * backslashes + 1 : backslashes, L'\\');
        quoted += character;
        backslashes = 0;
    }
    quoted.append(2 * backslashes, L'\\');
    return quoted + L"\"";
}

std::wstring FileName(const std::wstring& path) {
    std::wstring name = path.substr(path.find_last_of(L"\\/") + 1);
    for (wchar_t& character : name)
        character = static_cast<wchar_t>(std::towlower(character));
    return name;
}

std::wstring PathOf(HANDLE process, HMODULE module) {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameExW(process, module, path, MAX_PATH);
    return path;
}

// The application's module loaded from a file of that name, or null.
HMODULE ModuleNamed(HANDLE process, const std::wstring& name) {
    HMODULE modules[1024];
    DWORD needed = 0;
    if (!EnumProcessModules(process, modules, sizeof modules, &needed))
        return nullptr;
    for (DWORD index = 0; index < needed / sizeof(HMODULE) && index < std::size(modules); ++index)
        if (FileName(PathOf(process, modules[index])) == name)
            return modules[index];
    return nullptr;
}

// A copy of bytes in another process's memory, freed with it.
class RemoteCopy {
public:
    RemoteCopy(HANDLE process, const void* data, size_t size)
        : process(process), address(VirtualAllocEx(process, nullptr, size, MEM_COMMIT, PAGE_READWRITE)) {
        if (address == nullptr || !WriteProcessMemory(process, address, data, size, nullptr))
            throw std::runtime_error("cannot write into the application: " + SystemMessage(GetLastError()));
    }
    ~RemoteCopy() { VirtualFreeEx(process, address, 0, MEM_RELEASE); }
    RemoteCopy(const RemoteCopy&) = delete;
    RemoteCopy& operator=(const RemoteCopy&) = delete;

    void* Address() const { return address; }

private:
    HANDLE process;
    void* address;
};

}  // namespace

std::wstring CommandLineOf(const std::wstring& executable, const std::vector<std::wstring>& arguments) {
    std::wstring line = Quoted(executable);
    for (const std::wstring& argument : arguments)
        line += L" " + Quoted(argument);
    return line;
}

SuspendedApp::SuspendedApp(const std::wstring& executable, const std::vector<std::wstring>& arguments) {
    std::wstring line = CommandLineOf(executable, arguments);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    if (!CreateProcessW(executable.c_str(), line.data(), nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr, nullptr,
                        &startup, &process))
        throw std::runtime_error("cannot start the application: " + SystemMessage(GetLastError()));
    // kticore and the agent are 64-bit modules, and the loader's address
    // taken here is a 64-bit process's.
    BOOL emulated = FALSE;
    if (IsWow64Process(process.hProcess, &emulated) && emulated) {
        TerminateProcess(process.hProcess, ERROR_CANCELLED);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
        throw std::runtime_error("a 32-bit application cannot be run translated");
    }
}

SuspendedApp::~SuspendedApp() {
    if (!running)
        TerminateProcess(process.hProcess, ERROR_CANCELLED);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

bool SuspendedApp::Load(const std::wstring& path) {
    // The system's modules stand at the same address in every process.
    const auto loadLibrary = reinterpret_cast<LPTHREAD_START_ROUTINE>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "LoadLibraryW")));
    Call(loadLibrary, path.c_str(), (path.size() + 1) * sizeof(wchar_t));
    return ModuleNamed(process.hProcess, FileName(path)) != nullptr;
}

LPTHREAD_START_ROUTINE SuspendedApp::Counterpart(HMODULE local, const void* address) const {
    const HMODULE remote = ModuleNamed(process.hProcess, FileName(PathOf(GetCurrentProcess(), local)));
    if (remote == nullptr)
        return nullptr;
    const auto offset = static_cast<const char*>(address) - reinterpret_cast<const char*>(local);
    return reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<char*>(remote) + offset);
}

DWORD SuspendedApp::Call(LPTHREAD_START_ROUTINE start, const void* data, size_t size) {
    const RemoteCopy argument(process.hProcess, data, size);
    HANDLE thread = CreateRemoteThread(process.hProcess, nullptr, 0, start, argument.Address(), 0, nullptr);
    if (thread == nullptr)
        throw std::runtime_error("cannot run a thread in the application: " + SystemMessage(GetLastError()));
    const DWORD waited = WaitForSingleObject(thread, kCallMilliseconds);
    DWORD code = 0;
    GetExitCodeThread(thread, &code);
    CloseHandle(thread);
    if (waited != WAIT_OBJECT_0)
        throw std::runtime_error("the application did not answer within " +
                                 std::to_string(kCallMilliseconds / 1000) + " seconds");
    return code;
}

DWORD SuspendedApp::RunToEnd() {
    running = true;
    ResumeThread(process.hThread);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    return code;
}

}  // namespace kttool
