#include "tools/kttool/agent/AppModules.h"

#include <windows.h>
#include <psapi.h>

#include <cwctype>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "kticore/translation/Interception.h"
#include "kticore/translation/Translation.h"
#include "platform/Module.h"

namespace kttool::agent {
namespace {

constexpr char kLoaderLibrary[] = "kernel32.dll";

std::wstring Lower(std::wstring text) {
    for (wchar_t& character : text)
        character = static_cast<wchar_t>(std::towlower(character));
    return text;
}

std::wstring PathOf(HMODULE module) {
    KTWCHAR path[kt::sys::kModulePathCapacity] = {};
    kt::sys::ModuleFileNameW(module, path);
    return Lower(path);
}

std::wstring WindowsDirectory() {
    wchar_t path[MAX_PATH] = {};
    GetSystemWindowsDirectoryW(path, MAX_PATH);
    return Lower(path) + L"\\";
}

// The application's own: not the system's, not the library, not the agent.
bool BelongsToApplication(HMODULE module) {
    static const std::wstring system = WindowsDirectory();
    static const HMODULE library = kt::sys::ModuleContaining(reinterpret_cast<const void*>(&Supp_InitResTranslation));
    static const HMODULE agent = kt::sys::ModuleContaining(reinterpret_cast<const void*>(&TakeNewModules));
    return module != library && module != agent && PathOf(module).compare(0, system.size(), system) != 0;
}

std::vector<HMODULE> LoadedModules() {
    std::vector<HMODULE> modules(64);
    for (;;) {
        DWORD needed = 0;
        const DWORD capacity = static_cast<DWORD>(modules.size() * sizeof(HMODULE));
        if (!EnumProcessModules(GetCurrentProcess(), modules.data(), capacity, &needed))
            return {};
        if (needed <= capacity) {
            modules.resize(needed / sizeof(HMODULE));
            return modules;
        }
        modules.resize(needed / sizeof(HMODULE));
    }
}

// The system's loader functions, as the modules imported them.
struct Loaders {
    decltype(&LoadLibraryA) loadA;
    decltype(&LoadLibraryW) loadW;
    decltype(&LoadLibraryExA) loadExA;
    decltype(&LoadLibraryExW) loadExW;
};

template <class Function>
Function Exported(const char* name) {
    return reinterpret_cast<Function>(kt::sys::FindExport(GetModuleHandleA(kLoaderLibrary), name));
}

const Loaders& RealLoaders() {
    static const Loaders loaders = {
        Exported<decltype(&LoadLibraryA)>("LoadLibraryA"),
        Exported<decltype(&LoadLibraryW)>("LoadLibraryW"),
        Exported<decltype(&LoadLibraryExA)>("LoadLibraryExA"),
        Exported<decltype(&LoadLibraryExW)>("LoadLibraryExW"),
    };
    return loaders;
}

// A load that brought a module, or found one loaded, is followed by a look
// for modules not yet taken: a library's own imports come with it.
HMODULE Watched(HMODULE loaded) {
    if (loaded != nullptr)
        TakeNewModules();
    return loaded;
}

HMODULE WINAPI WatchedLoadLibraryA(LPCSTR name) { return Watched(RealLoaders().loadA(name)); }
HMODULE WINAPI WatchedLoadLibraryW(LPCWSTR name) { return Watched(RealLoaders().loadW(name)); }
HMODULE WINAPI WatchedLoadLibraryExA(LPCSTR name, HANDLE file, DWORD flags) {
    return Watched(RealLoaders().loadExA(name, file, flags));
}
HMODULE WINAPI WatchedLoadLibraryExW(LPCWSTR name, HANDLE file, DWORD flags) {
    return Watched(RealLoaders().loadExW(name, file, flags));
}

void Take(HMODULE module) {
    Supp_InitResTranslation(module);
    const struct {
        const char* name;
        void* replacement;
    } kWatches[] = {
        {"LoadLibraryA", reinterpret_cast<void*>(&WatchedLoadLibraryA)},
        {"LoadLibraryW", reinterpret_cast<void*>(&WatchedLoadLibraryW)},
        {"LoadLibraryExA", reinterpret_cast<void*>(&WatchedLoadLibraryExA)},
        {"LoadLibraryExW", reinterpret_cast<void*>(&WatchedLoadLibraryExW)},
    };
    for (const auto& watch : kWatches)
        HookProc_Install(module, kLoaderLibrary, watch.name, watch.replacement);
}

std::mutex takingModules;
// Each module as it was last seen loaded: one unloaded and another loaded
// at its address is taken again. Taking a module twice changes nothing.
std::set<HMODULE> takenModules;

// The application's modules loaded now that were not when last seen.
std::vector<HMODULE> Untaken(const std::vector<HMODULE>& application) {
    std::set<HMODULE> loaded(application.begin(), application.end());
    std::vector<HMODULE> untaken;
    std::lock_guard<std::mutex> taking(takingModules);
    for (HMODULE module : loaded)
        if (takenModules.count(module) == 0)
            untaken.push_back(module);
    takenModules.swap(loaded);
    return untaken;
}

}  // namespace

void TakeNewModules() {
    RealLoaders();  // before any import entry leads to a replacement
    // The loader is asked outside the lock: a thread in a module's DllMain
    // holds the loader's own lock while its load waits here.
    std::vector<HMODULE> application;
    for (HMODULE module : LoadedModules())
        if (BelongsToApplication(module))
            application.push_back(module);
    for (HMODULE module : Untaken(application))
        Take(module);
}

}  // namespace kttool::agent
