// Ranges, searching and editing, the same in both widths.
#include <gtest/gtest.h>

#include "tests/support/StringWidths.h"

namespace kt::test {
namespace {

template <class W>
using StringEditing = StringTest<W>;
TYPED_TEST_SUITE(StringEditing, BothWidths, WidthName);

TYPED_TEST(StringEditing, DeleteTakesRangesThatReachBackwardAndClips) {
    struct Case {
        int pos, count;
        const char* expected;
    } cases[] = {{2, -1, "acd"}, {-1, -2, "ab"}, {1, 100, "a"},
                 {0, 0, "abcd"}, {9, -2, "ab"},  {1, -5, "bcd"}};
    for (const Case& c : cases) {
        auto s = this->Make("abcd");
        s.Delete(c.pos, c.count);
        EXPECT_EQ(this->Of(s), this->T(c.expected)) << c.pos << "," << c.count;
    }
}

TYPED_TEST(StringEditing, ReplaceNeedsBothARangeAndAText) {
    auto s = this->Make("abc");
    s.Replace(1, 0, this->T("x").c_str());
    s.Replace(1, 1, this->T("").c_str());
    EXPECT_EQ(this->Of(s), this->T("abc"));
    s.Replace(1, 1, this->T("XYZ").c_str());
    EXPECT_EQ(this->Of(s), this->T("aXYZc"));
    s.Replace(-1, -2, this->T("!").c_str());
    EXPECT_EQ(this->Of(s), this->T("aXY!"));
}

TYPED_TEST(StringEditing, ExtractGivesTheRangeAndItsSize) {
    auto s = this->Make("abcd");
    typename TypeParam::String dest = this->Make("old");
    EXPECT_EQ(s.Extract(-1, -2, dest), 2);
    EXPECT_EQ(this->Of(dest), this->T("cd"));
    EXPECT_EQ(s.Extract(1, 2), 2);
    EXPECT_EQ(this->Of(s), this->T("bc"));
}

TYPED_TEST(StringEditing, InsertAtAPositionOrTheEnd) {
    auto s = this->Make("ac");
    s.Insert(1, 'b').Insert(-1, 'd').Insert(99, this->T("ef").c_str()).Insert(0, KTWCHAR(0));
    EXPECT_EQ(this->Of(s), this->T("abcdef"));
}

TYPED_TEST(StringEditing, FindReplaceChangesTheFirstOccurrenceOnly) {
    auto s = this->Make("a-b-c");
    EXPECT_EQ(s.FindReplace(this->T("-").c_str(), this->T("+").c_str()), 1);
    EXPECT_EQ(this->Of(s), this->T("a+b-c"));
    EXPECT_EQ(s.FindReplace(KTWCHAR('-'), KTWCHAR('=')), 1);
    EXPECT_EQ(this->Of(s), this->T("a+b=c"));
    EXPECT_EQ(s.FindReplace(this->T("+b").c_str(), this->T("").c_str()), 1);
    EXPECT_EQ(this->Of(s), this->T("a=c"));
    EXPECT_EQ(s.FindReplace(this->T("q").c_str(), this->T("r").c_str()), 0);
    EXPECT_EQ(s.FindReplace(KTWCHAR('c'), this->T("long").c_str()), 1);
    EXPECT_EQ(this->Of(s), this->T("a=long"));
    EXPECT_EQ(s.FindReplace(this->T("=").c_str(), KTWCHAR('.')), 1);
    EXPECT_EQ(this->Of(s), this->T("a.long"));
}

// As the C library's strchr, strrchr and strstr answer: the terminator is a
// character that can be found, and an empty text occurs at the start.
TYPED_TEST(StringEditing, TheTerminatorAndTheEmptyTextAreFound) {
    auto s = this->Make("abc");
    EXPECT_EQ(s.Find(KTWCHAR(0)), 3);
    EXPECT_EQ(s.Find(KTWCHAR(0), 99), 3);
    EXPECT_EQ(s.FindRev(KTWCHAR(0)), 3);
    EXPECT_EQ(s.Find(this->T("").c_str(), 1), 1);
    EXPECT_EQ(s.FindReplace(this->T("").c_str(), this->T("<").c_str()), 1);
    EXPECT_EQ(this->Of(s), this->T("<abc"));
    typename TypeParam::String empty;
    EXPECT_EQ(empty.Find(KTWCHAR(0)), -1);
    EXPECT_EQ(empty.FindReplace(this->T("").c_str(), this->T("x").c_str()), 1);
    EXPECT_EQ(this->Of(empty), this->T("x"));
}

TYPED_TEST(StringEditing, SearchesReturnPositionsOrMinusOne) {
    auto s = this->Make("path/to/file.txt");
    EXPECT_EQ(s.Find(this->T("to").c_str()), 5);
    EXPECT_EQ(s.Find(KTWCHAR('/'), 5), 7);
    EXPECT_EQ(s.Find(KTWCHAR('/'), 99), -1);
    EXPECT_EQ(s.FindOnOf(this->T("./").c_str(), 8), 12);
    EXPECT_EQ(s.FindRev(KTWCHAR('/')), 7);
    EXPECT_EQ(s.FindRevOnOf(this->T("/x").c_str()), 14);
    typename TypeParam::String empty;
    EXPECT_EQ(empty.Find(this->T("").c_str()), -1);
    EXPECT_EQ(empty.FindRev(KTWCHAR('a')), -1);
}

TYPED_TEST(StringEditing, TrimmingRemovesBlankSpace) {
    auto s = this->Make(" \t lead and trail \r\n ");
    s.TrimLeft();
    s.TrimRight();
    EXPECT_EQ(this->Of(s), this->T("lead and trail"));
    auto blanks = this->Make("    ");
    blanks.TrimLeft();
    EXPECT_EQ(blanks.GetLength(), 0u);
    blanks += this->Make("ok");
    EXPECT_EQ(this->Of(blanks), this->T("ok"));
}

TYPED_TEST(StringEditing, ComparisonsOrderAndCount) {
    auto s = this->Make("Hello");
    EXPECT_EQ(s.Compare(this->T("Hello").c_str()), 0);
    EXPECT_LT(s.Compare(this->T("World").c_str()), 0);
    EXPECT_GT(s.Compare(this->T("Hell").c_str()), 0);
    EXPECT_EQ(s.CompareN(this->T("Help").c_str(), 3), 0);
    EXPECT_NE(s.CompareN(this->T("Help").c_str(), 4), 0);
}

TYPED_TEST(StringEditing, CopyFitCopiesWholeCharactersThatFit) {
    auto s = this->Make("abcdef");
    typename TypeParam::Unit out[8] = {};
    EXPECT_EQ(s.CopyFit(out, 4), 3u);
    EXPECT_EQ(std::basic_string<typename TypeParam::Unit>(out), this->T("abc"));
    EXPECT_EQ(s.Copy(out, 2u), 2u);
    EXPECT_EQ(std::basic_string<typename TypeParam::Unit>(out), this->T("ab"));
}

TYPED_TEST(StringEditing, ConcatenationInAllForms) {
    auto a = this->Make("ab");
    EXPECT_EQ(this->Of(a + this->Make("cd")), this->T("abcd"));
    EXPECT_EQ(this->Of(a + this->T("cd").c_str()), this->T("abcd"));
    EXPECT_EQ(this->Of(this->T("cd").c_str() + a), this->T("cdab"));
    EXPECT_EQ(this->Of(a + KTWCHAR('!')), this->T("ab!"));
    EXPECT_EQ(this->Of(KTWCHAR('!') + a), this->T("!ab"));
    a += KTWCHAR('c');
    EXPECT_EQ(this->Of(a), this->T("abc"));
}

}  // namespace
}  // namespace kt::test
