// The shared object's load hook, the native twin of DllMain. Its priority puts
// it after the memory manager is built, as on Windows.
#include "core/Library.h"
#include "platform/Module.h"

namespace {

__attribute__((constructor(200))) void LibraryLoaded() {
    kt::OnLibraryLoad(kt::sys::ModuleContaining(reinterpret_cast<const void*>(&LibraryLoaded)));
}

}  // namespace
