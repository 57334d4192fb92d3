// Case is the C runtime's: in a program that has not set a locale only the
// ASCII letters have case, in both widths. Bytes above 0x7F stand for the
// Latin-1 characters of those codes in either width (é is 0xE9).
#include <gtest/gtest.h>

#include "tests/support/StringWidths.h"
#include "tests/support/WideText.h"

namespace kt::test {
namespace {

template <class W>
class Case : public StringTest<W> {};
TYPED_TEST_SUITE(Case, BothWidths, WidthName);

TYPED_TEST(Case, OnlyAsciiLettersChange) {
    struct Row {
        const char *text, *upper, *lower;
    } rows[] = {
        {"abcXYZ", "ABCXYZ", "abcxyz"},
        {"@[`{", "@[`{", "@[`{"},  // the neighbours of the letters
        {"\xE9\xC9z", "\xE9\xC9Z", "\xE9\xC9z"},
        {"\xFF\xDF\xB5", "\xFF\xDF\xB5", "\xFF\xDF\xB5"},
    };
    for (const Row& row : rows) {
        auto upper = this->Make(row.text);
        auto lower = this->Make(row.text);
        upper.Upper();
        lower.Lower();
        EXPECT_EQ(this->Of(upper), this->T(row.upper)) << row.text;
        EXPECT_EQ(this->Of(lower), this->T(row.lower)) << row.text;
    }
}

int Sign(int value) { return (value > 0) - (value < 0); }

TYPED_TEST(Case, CaseBlindComparisonsFoldToLowerCase) {
    struct Row {
        const char *a, *b;
        int count;  // characters; -1 for CompareI
        int sign;
    } rows[] = {
        {"abc", "ABC", -1, 0}, {"\xE9", "\xC9", -1, 1},
        {"_", "A", -1, -1},  // '_' lies between the upper and the lower letters
        {"abX", "ABY", 2, 0},  {"abX", "ABY", 3, -1},
        {"ab", "ABC", -1, -1},
    };
    for (const Row& row : rows) {
        const auto a = this->Make(row.a);
        const auto b = this->T(row.b);
        const int result =
            row.count < 0 ? a.CompareI(b.c_str()) : a.CompareIN(b.c_str(), row.count);
        EXPECT_EQ(Sign(result), row.sign) << row.a << " " << row.b << " " << row.count;
    }
}

TEST(WideCase, LettersBeyondLatinOneKeepTheirCase) {
    CXStringW s(KTW("\u00e9\u03b1\u0436\uff41z"));
    s.Upper();
    EXPECT_EQ(Wide(s), KTW("\u00e9\u03b1\u0436\uff41Z"));
    EXPECT_EQ(CXStringW(KTW("\u00c9T\u00c9 \u00e9t\u00e9")).FindI(KTW("\u00e9T\u00e9")), 4);
}

}  // namespace
}  // namespace kt::test
