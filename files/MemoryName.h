// Memory names: "fmem::" in any case, then the address and the size of a
// block of the host's, as decimal numbers split by runs of ',' and '.'.
#pragma once

#include "kticore/platform/Platform.h"

namespace kt {

constexpr int kMemoryPrefixLength = 6;

bool IsMemoryName(const KTWCHAR* name);

struct MemoryBlock {
    const unsigned char* data;
    DWORD size;
};

// The block a memory name names. The numbers are 32-bit and signed, as the
// runtime reads them; the address is widened with its sign, and a negative
// size is 0.
MemoryBlock ParseMemoryName(const KTWCHAR* name);

}  // namespace kt
