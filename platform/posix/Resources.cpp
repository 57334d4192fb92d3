// The POSIX implementation of module resources and local blocks: a shared
// object carries no resources, and a local block is a block of the C heap.
#include "platform/Resources.h"

#include <cstdlib>

namespace kt::sys {

HGLOBAL LoadResourceBlock(HMODULE, HRSRC) { return nullptr; }

DWORD ResourceBlockSize(HMODULE, HRSRC) { return 0; }

const void* LockResourceBlock(HGLOBAL block) { return block; }

void* AllocLocalBlock(size_t size) { return std::malloc(size != 0 ? size : 1); }

void FreeLocalBlock(void* block) { std::free(block); }

}  // namespace kt::sys
