// The code page in which narrow text becomes 16-bit text when a CXStringW is
// made from it: 0 (the ANSI code page) until a translation file names another.
#pragma once

namespace kt {

unsigned NarrowTextCodePage();
void SetNarrowTextCodePage(unsigned codePage);

}  // namespace kt
