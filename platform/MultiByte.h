// The multibyte code page of the process's narrow text: which bytes begin a
// double-byte character. Hosts choose it with the runtime's _setmbcp; every
// narrow string operation asks these questions and nothing else of it.
#pragma once

#include "kticore/platform/Platform.h"

namespace kt::sys {

// Whether `byte` begins a double-byte character in the current multibyte
// code page (never, in a single-byte code page).
bool IsLeadByte(unsigned char byte);

// Whether the character `code` (lead << 8 | trail, or a single byte) is
// white space, as _ismbcspace answers in the current multibyte code page.
bool IsSpaceCharacter(unsigned code);

// The code page that narrow text is in: the multibyte code page the runtime
// was given, or the ANSI code page where the runtime reports none.
unsigned MultiByteCodePage();

}  // namespace kt::sys
