// Modules (a DLL, a shared object, an executable) as the library needs them.
#pragma once

#include "kticore/platform/Platform.h"

namespace kt::sys {

// The module whose image holds `address`: its allocation base on Windows, the
// base of the shared object natively.
HMODULE ModuleContaining(const void* address);

}  // namespace kt::sys
