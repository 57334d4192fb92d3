// The C runtime's change and comparison of case, in whatever state the
// process has put the runtime in: its locale (setlocale) and its multibyte
// code page (_setmbcp). Narrow text is in that code page, and a character is
// a lead byte with its trail byte or one byte. Comparisons fold to lower case
// and answer by their sign.
//
// The runtime takes the terminator behind a lone lead byte for its trail byte
// and reads on: text that ends in one must carry a second terminator.
#pragma once

#include <cstddef>

#include "kticore/platform/Platform.h"

namespace kt::sys {

// _mbsupr and _mbslwr, in place.
void UpperMultiByte(char* text);
void LowerMultiByte(char* text);
// _mbsicmp, and _mbsnicmp over the first `count` characters.
int CompareMultiByteIgnoringCase(const char* a, const char* b);
int CompareMultiByteIgnoringCase(const char* a, const char* b, std::size_t count);

// _wcsupr and _wcslwr, in place.
void UpperWide(KTWCHAR* text);
void LowerWide(KTWCHAR* text);
// _wcsicmp, and _wcsnicmp over the first `count` units.
int CompareWideIgnoringCase(const KTWCHAR* a, const KTWCHAR* b);
int CompareWideIgnoringCase(const KTWCHAR* a, const KTWCHAR* b, std::size_t count);

}  // namespace kt::sys
