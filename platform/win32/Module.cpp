// The Win32 implementation of module look-up.
#include "platform/Module.h"

namespace kt::sys {

HMODULE ModuleContaining(const void* address) {
    MEMORY_BASIC_INFORMATION info;
    if (VirtualQuery(address, &info, sizeof info) == 0)
        return nullptr;
    return static_cast<HMODULE>(info.AllocationBase);
}

}  // namespace kt::sys
