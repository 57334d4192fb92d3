// Resources of a loaded module, and the system's local memory blocks that a
// stand-in for a resource lives in.
#pragma once

#include <cstddef>

#include "kticore/platform/Platform.h"

namespace kt::sys {

// As LoadResource, SizeofResource and LockResource. Natively a module carries
// no resources: there is never a block to load, and its size is 0.
HGLOBAL LoadResourceBlock(HMODULE module, HRSRC resource);
DWORD ResourceBlockSize(HMODULE module, HRSRC resource);
const void* LockResourceBlock(HGLOBAL block);

// As LocalAlloc with no flags and LocalFree: a fixed block, null when none
// can be had.
void* AllocLocalBlock(size_t size);
void FreeLocalBlock(void* block);

}  // namespace kt::sys
