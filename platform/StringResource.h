// String resources of a module, by number.
#pragma once

#include "kticore/platform/Platform.h"

namespace kt::sys {

// As LoadStringA and LoadStringW: copies at most `capacity - 1` characters of
// string `id` of `module` and a terminator, and returns the number copied; 0
// when the module has no such string. Modules have no string resources
// natively.
int LoadStringResource(HMODULE module, unsigned id, char* buffer, int capacity);
int LoadStringResource(HMODULE module, unsigned id, KTWCHAR* buffer, int capacity);

}  // namespace kt::sys
