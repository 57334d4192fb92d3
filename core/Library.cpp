#include "core/Library.h"

#include "platform/Module.h"

namespace kt {

namespace {
HMODULE libraryModule = nullptr;
}

void OnLibraryLoad(HMODULE module) { libraryModule = module; }

HMODULE LibraryModule() {
    if (libraryModule == nullptr)
        libraryModule = sys::ModuleContaining(reinterpret_cast<const void*>(&LibraryModule));
    return libraryModule;
}

}  // namespace kt
