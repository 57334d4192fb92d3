// The POSIX implementation of module look-up and loading, through the dynamic
// linker. The search path of modules is that of Windows in the order that
// matters here: the executable's directory, the current directory, then PATH.
#include "platform/Module.h"

#include <dlfcn.h>
#include <limits.h>
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "platform/TextConversion.h"

namespace kt::sys {
namespace {

bool IsFile(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

std::string ExecutablePath() {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    return length > 0 ? std::string(path, static_cast<size_t>(length)) : std::string();
}

std::string ExecutableDirectory() {
    const std::string executable = ExecutablePath();
    return executable.substr(0, executable.rfind('/'));
}

std::string Absolute(const std::string& path) {
    char resolved[PATH_MAX];
    return realpath(path.c_str(), resolved) != nullptr ? std::string(resolved) : path;
}

}  // namespace

HMODULE ModuleContaining(const void* address) {
    Dl_info info;
    if (dladdr(address, &info) == 0)
        return nullptr;
    // The handle of a loaded object, without keeping a count of our own; the
    // main program is not known by its file name.
    void* handle = dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
    if (handle == nullptr)
        return dlopen(nullptr, RTLD_LAZY);
    dlclose(handle);
    return handle;
}

std::string SearchModuleFile(const char* fileName, std::string& error) {
    const std::string name(fileName);
    if (name.find('/') != std::string::npos) {
        if (IsFile(name))
            return Absolute(name);
    } else {
        std::string directories = ExecutableDirectory() + ":.";
        if (const char* path = std::getenv("PATH"))
            directories += std::string(":") + path;
        for (size_t start = 0; start <= directories.size();) {
            size_t end = directories.find(':', start);
            if (end == std::string::npos)
                end = directories.size();
            const std::string candidate =
                (end > start ? directories.substr(start, end - start) : ".") + "/" + name;
            if (IsFile(candidate))
                return Absolute(candidate);
            start = end + 1;
        }
    }
    error = std::strerror(ENOENT);
    return std::string();
}

HMODULE LoadModule(const char* path) { return dlopen(path, RTLD_NOW | RTLD_LOCAL); }

void* FindExport(HMODULE module, const char* name) { return dlsym(module, name); }

size_t ModuleFileNameA(HMODULE module, char (&path)[kModulePathCapacity]) {
    std::string name;
    link_map* map = nullptr;
    if (module == nullptr)
        name = ExecutablePath();
    else if (dlinfo(module, RTLD_DI_LINKMAP, &map) == 0)
        // The dynamic linker knows the main program by an empty name.
        name = map->l_name[0] != 0 ? map->l_name : ExecutablePath();
    const size_t kept = std::min(name.size(), kModulePathCapacity - 1);
    std::memcpy(path, name.data(), kept);
    path[kept] = 0;
    return kept;
}

// UTF-8 never takes fewer bytes than UTF-16 takes units, so the wide path
// fits where the narrow one did.
size_t ModuleFileNameW(HMODULE module, KTWCHAR (&path)[kModulePathCapacity]) {
    char narrow[kModulePathCapacity];
    const size_t length = ModuleFileNameA(module, narrow);
    const int units = MultiByteToWide(kUtf8CodePage, narrow, static_cast<int>(length), path,
                                      static_cast<int>(kModulePathCapacity - 1));
    path[units] = 0;
    return static_cast<size_t>(units);
}

}  // namespace kt::sys
