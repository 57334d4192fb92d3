// Copy on write, the locked state and the exact-size growth, in both widths.
#include <gtest/gtest.h>

#include "tests/support/StringInspection.h"
#include "tests/support/StringWidths.h"

namespace kt::test {
namespace {

template <class W>
using StringSharing = StringTest<W>;
TYPED_TEST_SUITE(StringSharing, BothWidths, WidthName);

TYPED_TEST(StringSharing, ACopySharesUntilOneChanges) {
    auto original = this->Make("abc");
    auto copy = original;
    EXPECT_EQ(this->DataOf(original), this->DataOf(copy));
    EXPECT_EQ(HeaderOf(original).refs, 2);

    copy.Insert(0, 'x');
    EXPECT_EQ(this->Of(original), this->T("abc"));
    EXPECT_EQ(this->Of(copy), this->T("xabc"));
    EXPECT_EQ(HeaderOf(original).refs, 1);
    EXPECT_EQ(HeaderOf(copy).refs, 1);
}

TYPED_TEST(StringSharing, EveryChangingOperationLeavesTheOtherCopyAlone) {
    using String = typename TypeParam::String;
    const auto before = this->T(" Abc.def ");
    void (*changes[])(String&) = {
        [](String& s) { s.Delete(0, 2); },
        [](String& s) { s.Replace(1, 1, TypeParam::Text("zz").c_str()); },
        [](String& s) { s.Extract(1, 3); },
        [](String& s) {
            s.FindReplace(TypeParam::Text("b").c_str(), TypeParam::Text("B").c_str());
        },
        [](String& s) { s.TrimLeft(); },
        [](String& s) { s.TrimRight(); },
        [](String& s) { s.Upper(); },
        [](String& s) { s.Lower(); },
        [](String& s) { s.ChangeFileExt(TypeParam::Text("x").c_str()); },
        [](String& s) { s.AddDirDelim(); },
        [](String& s) {
            s.GetBuffer(3)[0] = 'q';
            s.ReleaseBuffer();
        },
    };
    for (auto change : changes) {
        String original(before.c_str());
        String copy = original;
        change(copy);
        EXPECT_EQ(this->Of(original), before);
        EXPECT_NE(this->DataOf(original), this->DataOf(copy));
    }
}

TYPED_TEST(StringSharing, ALockedBufferIsCopiedNotShared) {
    auto original = this->Make("abc");
    auto shared = original;
    auto* buffer = original.GetBuffer(10);
    EXPECT_NE(buffer, this->DataOf(shared));  // made private for writing
    EXPECT_EQ(HeaderOf(original).refs, -1);

    auto copy = original;
    EXPECT_NE(this->DataOf(copy), buffer);
    typename TypeParam::String assigned;
    assigned = original;
    EXPECT_NE(this->DataOf(assigned), buffer);

    buffer[3] = 'd';
    buffer[4] = 0;
    original.ReleaseBuffer(1);  // the argument does not cut the text
    EXPECT_EQ(HeaderOf(original).refs, 1);
    EXPECT_EQ(this->Of(original), this->T("abcd"));
    EXPECT_EQ(this->Of(copy), this->T("abc"));

    // A locked buffer counts as one reference: it goes with its string.
    typename TypeParam::String forgotten = this->Make("never released");
    forgotten.GetBuffer(20);
    forgotten = copy;
}

TYPED_TEST(StringSharing, EmptyStringsShareOneStaticBuffer) {
    using String = typename TypeParam::String;
    String a;
    String b(this->T("").c_str());
    String c(static_cast<const typename TypeParam::Unit*>(nullptr));
    EXPECT_EQ(this->DataOf(a), this->DataOf(b));
    EXPECT_EQ(this->DataOf(a), this->DataOf(c));
    EXPECT_EQ(HeaderOf(a).refs, -1);
    EXPECT_EQ(a.GetAllocSize(), 0);

    String copy = a;  // not a value copy, although refs is -1
    EXPECT_EQ(this->DataOf(copy), this->DataOf(a));
    copy.TrimLeft();
    copy.Upper();
    EXPECT_EQ(this->DataOf(copy), this->DataOf(a));
}

TYPED_TEST(StringSharing, BuffersGrowToTheExactRoomAsked) {
    const int unit = sizeof(typename TypeParam::Unit);
    auto s = this->Make("ab");  // AssignCopy: n + 1 units narrow, n + 2 wide
    EXPECT_EQ(s.GetAllocSize(), unit * (2 + (unit == 1 ? 1 : 2)));
    s += this->Make("cde");
    EXPECT_EQ(s.GetAllocSize(), unit * (2 + 3 + 1));
    s.Upper();
    EXPECT_EQ(s.GetAllocSize(), unit * (2 * 5 + 2));
    s.Delete(0, 4);  // never shrinks
    EXPECT_EQ(s.GetAllocSize(), unit * 12);
    auto other = this->Make("x");
    other.GetBuffer(10);
    other.ReleaseBuffer();
    EXPECT_EQ(other.GetAllocSize(), unit * 11);
}

TYPED_TEST(StringSharing, AssignmentSharesAndSelfAssignmentKeeps) {
    auto a = this->Make("text");
    typename TypeParam::String b;
    b = a;
    EXPECT_EQ(this->DataOf(a), this->DataOf(b));
    EXPECT_EQ(HeaderOf(a).refs, 2);
    b = b;
    EXPECT_EQ(HeaderOf(a).refs, 2);
    b = typename TypeParam::String();
    EXPECT_EQ(HeaderOf(a).refs, 1);
    EXPECT_EQ(b.GetSize(), 0u);
}

TYPED_TEST(StringSharing, TextFromTheStringsOwnBufferSurvivesGrowth) {
    auto s = this->Make("abcdef");
    s.Insert(3, this->DataOf(s));  // the source lies in the buffer that grows
    EXPECT_EQ(this->Of(s), this->T("abcabcdefdef"));
    s.Replace(0, 3, this->DataOf(s) + 9);
    EXPECT_EQ(this->Of(s), this->T("defabcdefdef"));
}

}  // namespace
}  // namespace kt::test
