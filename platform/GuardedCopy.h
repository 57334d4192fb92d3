// A copy from memory that may not be readable: the host names blocks by
// address, and a bad address must come back as a failure, not a crash.
#pragma once

#include <cstddef>

namespace kt::sys {

// Copies `size` bytes; false, with `to` undefined, when any of `from` can
// not be read.
bool CopyGuarded(void* to, const void* from, size_t size);

}  // namespace kt::sys
