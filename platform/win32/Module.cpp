// The Win32 implementation of module look-up and loading.
#include "platform/Module.h"

namespace kt::sys {

namespace {

// The system cuts a path that does not fit and, in older versions, leaves it
// unterminated.
template <class Unit>
size_t Terminated(Unit (&path)[kModulePathCapacity], DWORD length) {
    const size_t kept = length < kModulePathCapacity ? length : kModulePathCapacity - 1;
    path[kept] = 0;
    return kept;
}

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

size_t ModuleFileNameA(HMODULE module, char (&path)[kModulePathCapacity]) {
    return Terminated(path, GetModuleFileNameA(module, path, kModulePathCapacity));
}

size_t ModuleFileNameW(HMODULE module, KTWCHAR (&path)[kModulePathCapacity]) {
    return Terminated(path, GetModuleFileNameW(module, path, kModulePathCapacity));
}

}  // namespace kt::sys
