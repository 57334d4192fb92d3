#include "core/Library.h"

#include <atomic>

#include "platform/Module.h"

namespace kt {

namespace {
// Failures may be thrown on several threads before the entry point has run.
std::atomic<HMODULE> libraryModule{nullptr};
}  // namespace

void OnLibraryLoad(HMODULE module) { libraryModule.store(module, std::memory_order_release); }

HMODULE LibraryModule() {
    HMODULE stored = libraryModule.load(std::memory_order_acquire);
    if (stored != nullptr)
        return stored;
    const HMODULE found = sys::ModuleContaining(reinterpret_cast<const void*>(&LibraryModule));
    // Threads that got here together found the same module; the first store stands.
    libraryModule.compare_exchange_strong(stored, found, std::memory_order_acq_rel);
    return stored != nullptr ? stored : found;
}

}  // namespace kt
