// Conversion between narrow text in a code page and 16-bit text, with the
// meaning of MultiByteToWideChar and WideCharToMultiByte called with flags 0:
// what a code page cannot hold becomes its default character, nothing fails
// on content.
#pragma once

#include "kticore/platform/Platform.h"

namespace kt::sys {

// Code page 0 is the process's ANSI code page, as CP_ACP.
constexpr unsigned kAnsiCodePage = 0;
constexpr unsigned kUtf8CodePage = 65001;

// Converts `size` bytes (no terminator is implied). With a null `out` or a
// `capacity` of 0 it returns the number of units the text needs; else it
// writes them and returns their number, or 0 when they do not fit. 0 also for
// an empty text and for a code page the platform does not know.
int MultiByteToWide(unsigned codePage, const char* text, int size, KTWCHAR* out, int capacity);

// The same in the other direction; a unit the code page has no character for
// becomes '?'.
int WideToMultiByte(unsigned codePage, const KTWCHAR* text, int size, char* out, int capacity);

}  // namespace kt::sys
