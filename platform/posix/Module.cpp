// The POSIX implementation of module look-up, through the dynamic linker.
#include "platform/Module.h"

#include <dlfcn.h>

namespace kt::sys {

HMODULE ModuleContaining(const void* address) {
    Dl_info info;
    if (dladdr(address, &info) == 0)
        return nullptr;
    return info.dli_fbase;
}

}  // namespace kt::sys
