// What the exported interface takes from the platform: the export macro, the
// Windows type names its signatures are written in, and the 16-bit text unit.
//
// On Windows every name comes from the SDK, so host code written against the
// Win32 headers compiles unchanged. The native build (Linux, used for the
// portable layers) gets stand-ins of the same widths from posix/WinTypes.h;
// stored data never depends on which build wrote it.
#pragma once

#include <typeinfo>

#if defined(_WIN32)
#    include <windows.h>
// _setmbcp and _getmbcp: the multibyte code page of narrow text.
#    include <mbctype.h>
// The 16-bit text unit of the interface and its literal.
typedef wchar_t KTWCHAR;
#    define KTW(text) L##text
#    if defined(KTCORE_BUILDING_LIBRARY)
#        define KTCORE_API __declspec(dllexport)
#    else
#        define KTCORE_API __declspec(dllimport)
#    endif
#else
#    include "kticore/platform/posix/MbCType.h"
#    include "kticore/platform/posix/Visibility.h"
#    include "kticore/platform/posix/WinTypes.h"
#endif

// Interfaces are identified by run-time type; the Windows compilers declare
// type_info in the global namespace and host code spells it that way.
using std::type_info;
