// The POSIX implementation of string resources: a shared object carries none.
#include "platform/StringResource.h"

namespace kt::sys {

int LoadStringResource(HMODULE, unsigned, char* buffer, int capacity) {
    if (buffer != nullptr && capacity > 0)
        buffer[0] = 0;
    return 0;
}

int LoadStringResource(HMODULE, unsigned, KTWCHAR* buffer, int capacity) {
    if (buffer != nullptr && capacity > 0)
        buffer[0] = 0;
    return 0;
}

}  // namespace kt::sys
