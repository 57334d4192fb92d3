// Case and blank space of single 16-bit units, the same on every build: the
// simple case pairs of the Latin, Greek, Cyrillic, full-width and circled
// Latin letters and the Roman numerals, and the Unicode blank characters.
// Narrow text maps its characters through these too, so both widths change
// case alike.
#pragma once

#include "kticore/platform/Platform.h"

namespace kt::text {

KTWCHAR ToUpperUnit(KTWCHAR unit);
KTWCHAR ToLowerUnit(KTWCHAR unit);

// Tab, line feed, vertical tab, form feed, carriage return, the space, and
// the Unicode space separators (no-break space, ideographic space, ...).
bool IsSpaceUnit(KTWCHAR unit);

// The C locale's isspace, for the bytes of narrow text.
inline bool IsSpaceByte(char byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

}  // namespace kt::text
