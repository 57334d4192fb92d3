// Texts in and out of a `wld` file: a wide text becomes the bytes between a
// line's quotes in a code page, escapes made, and only when the dictionary's
// reader gives back exactly that wide text.
#pragma once

#include <string>

#include "tools/kttool/PeResources.h"

namespace kttool {

// The bytes between the quotes, or false where the reader would not give
// `text` back: a character the code page lacks, a NUL, a backslash the
// escapes would eat (doubled, before n, r or t, or at the end), or a line
// the reader would split.
bool EncodeWldString(const WideText& text, unsigned codePage, std::string& out);

// Narrow text of the file, its escapes undone, as the dictionary widens it.
WideText Widen(const std::string& narrow, unsigned codePage);
std::string Narrow(const WideText& text, unsigned codePage);

// For messages on the console: UTF-8, with line ends and tabs as escapes.
std::string Printable(const WideText& text);

}  // namespace kttool
