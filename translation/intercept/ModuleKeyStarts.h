// The start of the resource keys of each module that loads strings,
// remembered: reading a module's file name costs as much as loading a string
// from it, and a patched module loads many.
#pragma once

#include <windows.h>

#include "translation/Lookup.h"

namespace kt {

// As ModuleKeyStart, read once per module until the module is unloaded.
bool RememberedModuleKeyStart(HMODULE module, HashedText& start);

}  // namespace kt
