// One copy for memory that may fault under it: a host's block named by its
// address, a mapped view of a file that another process has cut short, a view
// that may not be written. The copy is a small routine with a known recovery
// point; a fault whose instruction lies inside it resumes there, and the copy
// answers false (the way kernels copy from user memory). Every other fault
// goes on to whatever handled it before.
#pragma once

#include <cstddef>

namespace kt::sys {

#pragma GCC visibility push(hidden)
// The routine itself (GuardedCopyRoutine.h): true when all `size` bytes were
// copied; false after a fault, with `to` partly written.
extern "C" bool ktGuardedCopy(void* to, const void* from, size_t size);
#pragma GCC visibility pop

// Copies of 1, 2, 4 or 8 bytes are single moves.
inline bool CopyGuarded(void* to, const void* from, size_t size) {
    return ktGuardedCopy(to, from, size);
}

}  // namespace kt::sys
