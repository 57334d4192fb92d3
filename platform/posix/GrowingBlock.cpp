// The POSIX implementation of growing blocks: glibc's realloc already grows
// large blocks by remapping, without a copy.
#include "platform/GrowingBlock.h"

#include <cstdlib>

namespace kt::sys {

void* GrowBlock(void* block, size_t, size_t newSize) { return std::realloc(block, newSize); }

void FreeGrownBlock(void* block, size_t) { std::free(block); }

}  // namespace kt::sys
