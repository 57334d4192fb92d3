// What the wide string does differently: null arguments are answered, the
// case-blind search, units everywhere, narrow text converted in a code page.
#include <gtest/gtest.h>

#include "kticore/strings/XString.h"
#include "kticore/strings/XStringW.h"
#include "tests/support/StringInspection.h"
#include "tests/support/WideText.h"

namespace kt::test {
namespace {

const KTWCHAR* const kNull = nullptr;

TEST(WideString, NullArgumentsAreAnswered) {
    CXStringW s(KTW("abc"));
    EXPECT_EQ(s.Compare(kNull), 1);
    EXPECT_EQ(s.CompareI(kNull), 1);
    EXPECT_EQ(s.CompareN(kNull, 2), 1);
    EXPECT_EQ(s.Find(kNull, 0), -1);
    EXPECT_EQ(s.FindOnOf(kNull), -1);
    EXPECT_EQ(s.FindRevOnOf(kNull), -1);
    EXPECT_EQ(s.Copy(static_cast<KTWCHAR*>(nullptr)), 0u);
    EXPECT_EQ(s.FindReplace(kNull, KTW("x")), 0);
    EXPECT_EQ(s.FindReplace(kNull, KTWCHAR('x')), -1);
    s.Format(kNull);
    EXPECT_EQ(Wide(s), KTW("abc"));
}

TEST(WideString, FindIIgnoresCaseAndLeavesTheString) {
    CXStringW s(KTW("xabc"));
    EXPECT_EQ(s.FindI(KTW("ABC")), 1);
    EXPECT_EQ(Wide(s), KTW("xabc"));
    EXPECT_EQ(s.FindI(KTW("")), -1);
    EXPECT_EQ(CXStringW().FindI(KTW("a")), -1);
}

TEST(WideString, TrimsUnicodeBlanks) {
    CXStringW s(KTW("\u3000\u00a0 text\u2028\t"));
    s.TrimLeft();
    s.TrimRight();
    EXPECT_EQ(Wide(s), KTW("text"));
}

TEST(WideString, NarrowTextConvertsInTheAnsiCodePage) {
    EXPECT_EQ(Wide(CXStringW("caf\xE9")), KTW("caf\u00e9"));
    EXPECT_EQ(Wide(CXStringW("\x80")), KTW("\u20ac"));  // the euro sign in 1252
    CXStringW out(KTW("old"));
    hostMultiByteToUnicode("", out);  // converts, and assigns, its terminator
    EXPECT_EQ(out.GetLength(), 0u);
    EXPECT_EQ(out.GetAllocSize(), 2 * static_cast<int>(sizeof(KTWCHAR)));
    hostMultiByteToUnicode("new", out);
    EXPECT_EQ(Wide(out), KTW("new"));
}

TEST(WideString, WideTextBecomesNarrowInTheAnsiCodePage) {
    CXString s(KTW("caf\u00e9 \u20ac \u3042"));
    EXPECT_EQ(std::string(s), "caf\xE9 \x80 ?");
    CXString assigned;
    assigned = KTW("x");
    EXPECT_EQ(std::string(assigned), "x");
}

}  // namespace
}  // namespace kt::test
