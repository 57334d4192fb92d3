// The start of the resource keys of each module that loads strings,
// remembered: reading a module's file name costs as much as loading a string
// from it, and a patched module loads many.
#pragma once

#include <windows.h>

#include <cstdint>

#include "translation/Lookup.h"

namespace kt {

// As ModuleKeyStart, read once per module until the module is unloaded.
bool RememberedModuleKeyStart(HMODULE module, HashedText& start);

// What tells `module` from another at its address (the time stamp, size and
// checksum of its headers), where the loader says when a module goes; false
// where it does not, or the headers cannot be read: then nothing of the
// module may be remembered.
bool RememberableIdentity(HMODULE module, std::uint64_t& identity);

}  // namespace kt
