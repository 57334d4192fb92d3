// The two string classes side by side, for tests that hold for both widths:
// ASCII literals are widened unit by unit.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "kticore/strings/XString.h"
#include "kticore/strings/XStringW.h"

namespace kt::test {

struct NarrowStrings {
    using String = CXString;
    using Unit = char;
    static std::string Text(const char* ascii) { return ascii; }
};

struct WideStrings {
    using String = CXStringW;
    using Unit = KTWCHAR;
    static std::basic_string<KTWCHAR> Text(const char* ascii) {
        std::basic_string<KTWCHAR> text;
        for (; *ascii != 0; ++ascii)
            text += static_cast<KTWCHAR>(static_cast<unsigned char>(*ascii));
        return text;
    }
};

using BothWidths = ::testing::Types<NarrowStrings, WideStrings>;

// Names the typed tests' instantiations by width.
struct WidthName {
    template <class W>
    static std::string GetName(int) {
        return std::is_same_v<W, NarrowStrings> ? "Narrow" : "Wide";
    }
};

}  // namespace kt::test
