// Narrow text in each code page becomes the same 16-bit text on every build.
#include <gtest/gtest.h>

#include "kticore/strings/XStringW.h"
#include "platform/TextConversion.h"
#include "tests/support/WideText.h"

namespace kt::test {
namespace {

WideString ToWide(unsigned codePage, const std::string& text) {
    KTWCHAR out[64];
    int units = sys::MultiByteToWide(codePage, text.data(), static_cast<int>(text.size()), out, 64);
    return WideString(out, static_cast<size_t>(units));
}

std::string ToNarrow(unsigned codePage, const WideString& text) {
    char out[64];
    int size = sys::WideToMultiByte(codePage, text.data(), static_cast<int>(text.size()), out, 64);
    return std::string(out, static_cast<size_t>(size));
}

TEST(TextConversion, EachCodePageDecodesItsCharacters) {
    struct Case {
        unsigned codePage;
        const char* bytes;
        const KTWCHAR* expected;
    } cases[] = {
        {874, "\xA1", KTW("\u0e01")},
        {932, "\x93\xFA\x96\x7B\xB1\\", KTW("\u65e5\u672c\uff71\\")},
        {936, "\xD6\xD0\xCE\xC4", KTW("\u4e2d\u6587")},
        {949, "\xC7\xD1\xB1\xDB", KTW("\ud55c\uae00")},
        {950, "\xA4\xA4\xA4\xE5", KTW("\u4e2d\u6587")},
        {1250, "\x8A\xE8", KTW("\u0160\u010d")},
        {1251, "\xC0\xFF", KTW("\u0410\u044f")},
        {1252, "\x80\x9F\x81", KTW("\u20ac\u0178\u0081")},
        {1253, "\xC1\xF9", KTW("\u0391\u03c9")},
        {1254, "\xD0\xFD", KTW("\u011e\u0131")},
        {1255, "\xE0\xFA", KTW("\u05d0\u05ea")},
        {1256, "\xC7\xED", KTW("\u0627\u064a")},
        {1257, "\xC0\xFE", KTW("\u0104\u017e")},
        {1258, "\xD0\xF0", KTW("\u0110\u0111")},
        {65001, "\xE6\x97\xA5\xF0\x9F\x98\x80", KTW("\u65e5\U0001F600")},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ToWide(c.codePage, c.bytes), c.expected) << c.codePage;
        EXPECT_EQ(ToNarrow(c.codePage, c.expected), c.bytes) << c.codePage;
    }
}

TEST(TextConversion, BrokenDoubleByteSequencesBecomeTheDefaultCharacter) {
    EXPECT_EQ(ToWide(932, "a\x82"), KTW("a\u30fb"));
    EXPECT_EQ(ToWide(65001, "a\xC3(z"), KTW("a\ufffd(z"));
    EXPECT_EQ(ToNarrow(1252, KTW("\u3042")), "?");
}

TEST(TextConversion, SizesAreAskedForAndTooSmallBuffersRefused) {
    const char text[] = "\x93\xFA\x96\x7B";
    EXPECT_EQ(sys::MultiByteToWide(932, text, 4, nullptr, 0), 2);
    KTWCHAR one[1];
    EXPECT_EQ(sys::MultiByteToWide(932, text, 4, one, 1), 0);
    EXPECT_EQ(sys::MultiByteToWide(932, text, 0, one, 1), 0);
    EXPECT_EQ(sys::WideToMultiByte(932, KTW("\u65e5"), 1, nullptr, 0), 2);
}

}  // namespace
}  // namespace kt::test
