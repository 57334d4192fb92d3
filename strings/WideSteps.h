// The length of a wide text sixteen bytes a step, for the path that every
// text a patched module loads goes through: the C library's is a call into
// another module, and walks a unit at a time.
#pragma once

#include <cstddef>

#include "kticore/platform/Platform.h"

namespace kt {

// The length of a terminated text.
KTCORE_API size_t WideLength(const KTWCHAR* text);

}  // namespace kt
