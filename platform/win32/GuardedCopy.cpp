#include "platform/GuardedCopy.h"

#include <windows.h>

namespace kt::sys {

bool CopyGuarded(void* to, const void* from, size_t size) {
    SIZE_T copied = 0;
    return ReadProcessMemory(GetCurrentProcess(), from, to, size, &copied) && copied == size;
}

}  // namespace kt::sys
