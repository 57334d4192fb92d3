// The Win32 implementation of module resources and local blocks. The real
// functions, never the library's own replacements of them, which come back
// here for what is not theirs.
#include "platform/Resources.h"

#include "platform/win32/RealFunctions.h"

namespace kt::sys {

HGLOBAL LoadResourceBlock(HMODULE module, HRSRC resource) { return KT_REAL(LoadResource)(module, resource); }

DWORD ResourceBlockSize(HMODULE module, HRSRC resource) { return KT_REAL(SizeofResource)(module, resource); }

const void* LockResourceBlock(HGLOBAL block) { return KT_REAL(LockResource)(block); }

void* AllocLocalBlock(size_t size) { return LocalAlloc(LMEM_FIXED, size); }

void FreeLocalBlock(void* block) { LocalFree(block); }

}  // namespace kt::sys
