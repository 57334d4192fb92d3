// The Win32 implementation of module resources and local blocks.
#include "platform/Resources.h"

namespace kt::sys {

HGLOBAL LoadResourceBlock(HMODULE module, HRSRC resource) { return LoadResource(module, resource); }

DWORD ResourceBlockSize(HMODULE module, HRSRC resource) { return SizeofResource(module, resource); }

const void* LockResourceBlock(HGLOBAL block) { return LockResource(block); }

void* AllocLocalBlock(size_t size) { return LocalAlloc(LMEM_FIXED, size); }

void FreeLocalBlock(void* block) { LocalFree(block); }

}  // namespace kt::sys
