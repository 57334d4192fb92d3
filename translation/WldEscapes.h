// The escapes of `wld` texts: \n, \r and \t, undone by a walk over the
// multibyte characters of the current code page, so that a trail byte with
// the code of a backslash escapes nothing.
#pragma once

#include <string>

#include "kticore/platform/Platform.h"

namespace kt {

// `size` bytes of `text` into `out`, escapes undone. A run of backslashes
// counts as one; before n, r or t it makes LF, CR or TAB; before any other
// character it stays with it; at the end it is dropped. A literal backslash
// before n, r or t cannot be written.
KTCORE_API void UndoWldEscapes(const char* text, size_t size, std::string& out);

}  // namespace kt
