// Helpers for the library's 16-bit text in tests.
#pragma once

#include <string>

#include "kticore/platform/Platform.h"

namespace kt::test {

using WideString = std::basic_string<KTWCHAR>;

inline WideString Wide(const KTWCHAR* text) {
    return text != nullptr ? WideString(text) : WideString();
}

// The 16-bit form of an ASCII text.
inline WideString W(const std::string& ascii) { return WideString(ascii.begin(), ascii.end()); }

}  // namespace kt::test
