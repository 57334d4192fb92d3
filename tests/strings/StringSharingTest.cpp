// Copy on write, the locked state and the exact-size growth, in both widths.
#include <gtest/gtest.h>

#include <algorithm>
#include <type_traits>

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

    // A locked buffer counts as one reference: it goes with its string (the
    // leak sanitizer of the native build watches that), and the assignment
    // shares as with any other string, assigning to itself keeps the share,
    // and assigning the empty string lets it go.
    typename TypeParam::String forgotten = this->Make("never released");
    forgotten.GetBuffer(20);
    forgotten = copy;
    EXPECT_EQ(this->DataOf(forgotten), this->DataOf(copy));
    forgotten = forgotten;
    EXPECT_EQ(HeaderOf(copy).refs, 2);
    forgotten = typename TypeParam::String();
    EXPECT_EQ(HeaderOf(copy).refs, 1);
    EXPECT_EQ(forgotten.GetSize(), 0u);
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

// Each change is made while a copy shares the buffer, which must stay as it
// was: the buffer that the string ends with has exactly the room that the
// change asked for. The last rows start from a larger private buffer, which
// no change may shrink.
TYPED_TEST(StringSharing, EveryChangeAsksForItsExactRoomAndNoBufferShrinks) {
    using String = typename TypeParam::String;
    using W = TypeParam;
    constexpr bool kNarrow = std::is_same_v<String, CXString>;
    struct Case {
        const char* name;
        void (*change)(String&);
        int narrowUnits, wideUnits;
    } cases[] = {
        // The text is "  abcd  ", 8 units.
        {"append a text", [](String& s) { s += String(W::Text("xy").c_str()); }, 11, 11},
        {"append a character", [](String& s) { s += KTWCHAR('x'); }, 10, 10},
        {"insert a character", [](String& s) { s.Insert(1, KTWCHAR('x')); }, 10, 10},
        {"insert a text", [](String& s) { s.Insert(1, W::Text("xyz").c_str()); }, 12, 12},
        {"delete", [](String& s) { s.Delete(0, 2); }, 9, 9},
        {"replace", [](String& s) { s.Replace(0, 2, W::Text("xyz").c_str()); }, 10, 10},
        {"extract", [](String& s) { s.Extract(3, 3); }, 5, 5},
        {"find and replace",
         [](String& s) { s.FindReplace(W::Text("ab").c_str(), W::Text("xyz").c_str()); }, 12, 12},
        {"find nothing to replace",
         [](String& s) { s.FindReplace(W::Text("q").c_str(), W::Text("xyz").c_str()); }, 12, 12},
        {"trim left", [](String& s) { s.TrimLeft(); }, 10, 10},
        {"trim right", [](String& s) { s.TrimRight(); }, 10, 10},
        {"upper", [](String& s) { s.Upper(); }, 18, 18},
        {"lower", [](String& s) { s.Lower(); }, 18, 18},
        {"lock", [](String& s) { s.GetBuffer(20), s.ReleaseBuffer(); }, 21, 21},
        {"format", [](String& s) { s.Format(W::Text("%d").c_str(), 7); }, 33, 33},
        {"change the extension", [](String& s) { s.ChangeFileExt(W::Text("x").c_str()); }, 11, 11},
        {"add a delimiter", [](String& s) { s.AddDirDelim(); }, 10, 10},
        {"assign a text", [](String& s) { s = W::Text("xyz").c_str(); }, 4, 5},
        {"assign a character", [](String& s) { s = KTWCHAR('x'); }, 2, 2},
        {"trim right the empty string", [](String& s) { s = String(), s.TrimRight(); }, 2, 2},
        {"construct from the other width",
         [](String& s) {
             if constexpr (kNarrow)
                 s = String(KTW("abc"));
             else
                 s = String("abc");
         },
         4, 5},
        {"convert from the other width into a larger buffer",
         [](String& s) {
             s.GetBuffer(50), s.ReleaseBuffer();  // not reused: a conversion assigns
             if constexpr (kNarrow)
                 s = KTW("abc");
             else
                 hostMultiByteToUnicode("abc", s);
         },
         4, 5},
        {"delete from a larger buffer",
         [](String& s) { s.GetBuffer(50), s.ReleaseBuffer(), s.Delete(0, 4); }, 51, 51},
        {"extract into itself from a larger buffer",
         [](String& s) { s.GetBuffer(50), s.ReleaseBuffer(), s.Extract(3, 2); }, 51, 51},
        {"format its own text into a larger buffer",
         [](String& s) {
             s.GetBuffer(100), s.ReleaseBuffer();
             s.Format(W::Text("%s").c_str(), s.GetData(2));
         },
         101, 101},
        {"format into a locked buffer",
         [](String& s) { s.GetBuffer(100), s.Format(W::Text("%d").c_str(), 1); }, 101, 101},
    };
    for (const Case& c : cases) {
        String s = this->Make("  abcd  ");
        const String sharing = s;
        c.change(s);
        const int units = kNarrow ? c.narrowUnits : c.wideUnits;
        EXPECT_EQ(s.GetAllocSize(), units * static_cast<int>(sizeof(typename W::Unit))) << c.name;
        EXPECT_EQ(this->Of(sharing), this->T("  abcd  ")) << c.name;
    }
}

// Each change takes its text, or its format, from the string's own buffer,
// once full to its last unit, so that the change must grow it, and once with
// room to spare, so that it may work in place: either way the text must be
// read before it is let go or written over.
TYPED_TEST(StringSharing, TextFromTheStringsOwnBufferSurvivesEveryChange) {
    using String = typename TypeParam::String;
    using W = TypeParam;
    struct Case {
        const char* name;
        const char* text;
        void (*change)(String&);
        const char* expected;
    } cases[] = {
        {"replace by own text", "abcdef",
         [](String& s) { s.FindReplace(W::Text("b").c_str(), s.GetData(3)); }, "adefcdef"},
        {"replace own text", "abcdef",
         [](String& s) { s.FindReplace(s.GetData(4), W::Text("XXXXXXXX").c_str()); },
         "abcdXXXXXXXX"},
        {"replace own text by a character", "abcdef",
         [](String& s) { s.FindReplace(s.GetData(5), KTWCHAR('Z')); }, "abcdeZ"},
        {"insert", "abcdef", [](String& s) { s.Insert(3, s.GetData(0)); }, "abcabcdefdef"},
        {"replace a range", "abcdef", [](String& s) { s.Replace(0, 1, s.GetData(2)); },
         "cdefbcdef"},
        {"append", "abcdef", [](String& s) { s += s; }, "abcdefabcdef"},
        {"change the extension", "abcdef", [](String& s) { s.ChangeFileExt(s.GetData(3)); },
         "abcdef.def"},
        {"format own text read behind the writing", "abcdef",
         [](String& s) { s.Format(W::Text("xx%s").c_str(), s.GetData(0)); }, "xxabcdef"},
        {"format by own format", "%5dX|%s",
         [](String& s) { s.Format(s, 1, W::Text("tail").c_str()); }, "    1X|tail"},
        {"assign", "abcdef", [](String& s) { s = s.GetData(2); }, "cdef"},
    };
    for (const Case& c : cases) {
        for (const int spare : {0, 100}) {
            const auto text = this->T(c.text);
            String s;
            std::copy(text.begin(), text.end(), s.GetBuffer(static_cast<int>(text.size()) + spare));
            s.ReleaseBuffer();
            c.change(s);
            EXPECT_EQ(this->Of(s), this->T(c.expected)) << c.name << ", " << spare << " spare";
        }
    }
}

}  // namespace
}  // namespace kt::test
