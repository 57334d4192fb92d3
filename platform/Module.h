// Modules (a DLL, a shared object, an executable) as the library needs them:
// finding the one that holds an address, finding a module file on the
// system's search path, loading it and asking it for an export.
//
// On Windows a module handle is the image's base; natively it is the handle
// of the dynamic linker (dlopen), which is what dlsym takes.
#pragma once

#include <string>

#include "kticore/platform/Platform.h"

namespace kt::sys {

// The module whose image holds `address`.
HMODULE ModuleContaining(const void* address);

// The full path of `fileName` on the system's default search path for
// modules (SearchPathA with no default extension), or empty when it is not
// found; `error` then gets the system's message for the failure.
std::string SearchModuleFile(const char* fileName, std::string& error);

// Loads a module by path; null on failure. A module is never unloaded.
HMODULE LoadModule(const char* path);

// The address of an export, or null.
void* FindExport(HMODULE module, const char* name);

// The buffer the library gives the system for a module's path, with its
// terminator.
constexpr size_t kModulePathCapacity = 260;

// The full path of a loaded module's file (null: the program's) in `path`, as
// GetModuleFileNameA and GetModuleFileNameW give it, cut to fit and
// terminated; its length, 0 when it cannot be read. Into the caller's buffer:
// every resource key starts with it, and a string load must not allocate.
size_t ModuleFileNameA(HMODULE module, char (&path)[kModulePathCapacity]);
size_t ModuleFileNameW(HMODULE module, KTWCHAR (&path)[kModulePathCapacity]);

}  // namespace kt::sys
