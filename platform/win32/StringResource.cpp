// The Win32 implementation of string resources.
#include "platform/StringResource.h"

namespace kt::sys {

int LoadStringResource(HMODULE module, unsigned id, char* buffer, int capacity) {
    return LoadStringA(static_cast<HINSTANCE>(module), id, buffer, capacity);
}

int LoadStringResource(HMODULE module, unsigned id, KTWCHAR* buffer, int capacity) {
    return LoadStringW(static_cast<HINSTANCE>(module), id, buffer, capacity);
}

}  // namespace kt::sys
