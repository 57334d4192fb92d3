// Blank space in single 16-bit units and in the bytes of narrow text, the
// same on every build.
#pragma once

#include "kticore/platform/Platform.h"

namespace kt::text {

// Tab, line feed, vertical tab, form feed, carriage return, the space, and
// the Unicode space separators (no-break space, ideographic space, ...).
bool IsSpaceUnit(KTWCHAR unit);

// The C locale's isspace, for the bytes of narrow text.
inline bool IsSpaceByte(char byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

}  // namespace kt::text
