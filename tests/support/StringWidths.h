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

// The base of typed tests: strings and texts of the width under test, made
// from ASCII literals.
template <class W>
class StringTest : public ::testing::Test {
protected:
    using String = typename W::String;
    using Unit = typename W::Unit;
    using Text = std::basic_string<Unit>;

    static String Make(const char* ascii) { return String(W::Text(ascii).c_str()); }
    static Text T(const char* ascii) { return W::Text(ascii); }
    static Text Of(const String& s) { return static_cast<const Unit*>(s); }
    static Text Of(const Unit* text) { return text != nullptr ? Text(text) : T("<null>"); }
    static const Unit* DataOf(const String& s) { return static_cast<const Unit*>(s); }
};

}  // namespace kt::test
