// Native stand-ins for the C runtime's multibyte code page functions, which a
// Windows host reaches through <mbctype.h>. The library keeps the state, so a
// host and the library agree on the code page as they do on Windows.
#pragma once

#include "kticore/platform/posix/Visibility.h"

// Arguments of _setmbcp that name no code page.
#define _MB_CP_SBCS 0
#define _MB_CP_OEM (-2)
#define _MB_CP_ANSI (-3)
#define _MB_CP_LOCALE (-4)

extern "C" {
// Makes `codePage` the multibyte code page: 0 on success, -1 for a code page
// that is not known (the current one stays). Known: 874, 1250 to 1258, 932,
// 936, 949, 950, 65001, and the names above, where the ANSI code page is 1252.
KTCORE_API int _setmbcp(int codePage);
// The current multibyte code page, 0 for a single-byte one.
KTCORE_API int _getmbcp(void);
// Nonzero if `byte` begins a double-byte character in the current code page.
KTCORE_API int _ismbblead(unsigned int byte);
}
