// Memory for a block that grows in place of the old one, as a memory stream's
// does. Natively this is realloc, which moves a large block by remapping its
// pages. Win32's heap copies a large block to grow it, and the new pages are
// touched for the first time again; so there a block from 1 MiB on gets
// address space for the largest block at once, and pages as it grows.
#pragma once

#include <cstddef>

namespace kt::sys {

// `block` (null for none) of `oldSize` bytes grown to `newSize`, at least
// `oldSize`, its bytes kept; it may move. Null when no memory can be had: the
// old block is then untouched.
void* GrowBlock(void* block, size_t oldSize, size_t newSize);
// Frees a block that GrowBlock made `size` bytes large.
void FreeGrownBlock(void* block, size_t size);

}  // namespace kt::sys
