// The POSIX implementation of module look-up and loading, through the dynamic
// linker. The search path of modules is that of Windows in the order that
// matters here: the executable's directory, the current directory, then PATH.
#include "platform/Module.h"

#include <dlfcn.h>
#include <limits.h>
#include <link.h>
#include <unistd.h>

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

// The system's buffer for a module's path: 260 characters with the terminator.
constexpr size_t kModulePathCapacity = 260;

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

std::string ModuleFileNameA(HMODULE module) {
    std::string path;
    link_map* map = nullptr;
    if (module == nullptr)
        path = ExecutablePath();
    else if (dlinfo(module, RTLD_DI_LINKMAP, &map) == 0)
        // The dynamic linker knows the main program by an empty name.
        path = map->l_name[0] != 0 ? map->l_name : ExecutablePath();
    if (path.size() >= kModulePathCapacity)
        path.resize(kModulePathCapacity - 1);
    return path;
}

std::basic_string<KTWCHAR> ModuleFileNameW(HMODULE module) {
    const std::string path = ModuleFileNameA(module);
    const int units =
        MultiByteToWide(kUtf8CodePage, path.data(), static_cast<int>(path.size()), nullptr, 0);
    std::basic_string<KTWCHAR> wide(static_cast<size_t>(units), 0);
    MultiByteToWide(kUtf8CodePage, path.data(), static_cast<int>(path.size()), wide.data(), units);
    return wide;
}

}  // namespace kt::sys
