// The library as a loaded module: what its entry point does at load and unload,
// and the module handle that failures carry.
#pragma once

#include "kticore/platform/Platform.h"

namespace kt {

// Called by the entry point when the process loads the library, after the
// static objects are built.
void OnLibraryLoad(HMODULE module);

// The handle that the entry point stored; before that, the module that holds
// the library's own code, found once and kept.
HMODULE LibraryModule();

}  // namespace kt
