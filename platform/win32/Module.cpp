// The Win32 implementation of module look-up and loading.
#include "platform/Module.h"

namespace kt::sys {

namespace {
// The buffer the library gives the system for a module's path.
constexpr DWORD kModulePathCapacity = 260;
}  // namespace

HMODULE ModuleContaining(const void* address) {
    MEMORY_BASIC_INFORMATION info;
    if (VirtualQuery(address, &info, sizeof info) == 0)
        return nullptr;
    return static_cast<HMODULE>(info.AllocationBase);
}

std::string SearchModuleFile(const char* fileName, std::string& error) {
    char path[512];
    char* filePart = nullptr;
    const DWORD length = SearchPathA(nullptr, fileName, nullptr, sizeof path, path, &filePart);
    if (length != 0 && length < sizeof path)
        return path;
    const DWORD code = length == 0 ? GetLastError() : ERROR_FILENAME_EXCED_RANGE;
    char message[260] = "";
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                   message, sizeof message, nullptr);
    error = message;
    return std::string();
}

HMODULE LoadModule(const char* path) { return LoadLibraryA(path); }

void* FindExport(HMODULE module, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(module, name));
}

std::string ModuleFileNameA(HMODULE module) {
    char path[kModulePathCapacity];
    const DWORD length = GetModuleFileNameA(module, path, kModulePathCapacity);
    return std::string(path, length < kModulePathCapacity ? length : kModulePathCapacity - 1);
}

std::basic_string<KTWCHAR> ModuleFileNameW(HMODULE module) {
    KTWCHAR path[kModulePathCapacity];
    const DWORD length = GetModuleFileNameW(module, path, kModulePathCapacity);
    return std::basic_string<KTWCHAR>(
        path, length < kModulePathCapacity ? length : kModulePathCapacity - 1);
}

}  // namespace kt::sys
