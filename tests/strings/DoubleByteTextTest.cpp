// Narrow strings in double-byte code pages: positions count characters, and
// no operation cuts a character between its lead and trail byte.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "kticore/strings/XString.h"
#include "tests/support/StringInspection.h"

namespace kt::test {
namespace {

// Shift-JIS (code page 932).
const char kNihongo[] = "\x93\xFA\x96\x7B\x8C\xEA";  // three characters
const char kHon[] = "\x96\x7B";
const char kHyou[] = "\x95\x5C";            // its trail byte is the code of '\'
const char kKatakanaA[] = "\x83\x41";       // its trail byte is the code of 'A'
const char kKatakanaSmallA[] = "\x83\x61";  // and this one's of 'a'

std::string Text(const CXString& s) { return static_cast<const char*>(s); }

class DoubleByteText : public ::testing::Test {
protected:
    ScopedCodePage shiftJis{932};
    void SetUp() override { ASSERT_TRUE(shiftJis.ok); }
};

TEST_F(DoubleByteText, PositionsCountCharactersAndSizesCountBytes) {
    CXString s(kNihongo);
    EXPECT_EQ(s.GetLength(), 3u);
    EXPECT_EQ(s.GetSize(), 6u);
    EXPECT_EQ(s.GetSize(2u), 4u);
    EXPECT_EQ(s.GetSize(1u, 5u), 4u);
    EXPECT_EQ(s.GetAt(1), 0x967B);
    EXPECT_EQ(s.GetAt(3), 0);
    EXPECT_EQ(s.GetData(2), static_cast<const char*>(s) + 4);
    EXPECT_EQ(s.Find(kHon), 1);
    EXPECT_EQ(s.Find(KTWCHAR(0x8CEA)), 2);
    EXPECT_EQ(s.FindRev(KTWCHAR(0x93FA)), 0);
}

TEST_F(DoubleByteText, CopyFitNeverSplitsACharacter) {
    CXString s(kNihongo);
    char out[8] = "zzzzzzz";
    EXPECT_EQ(s.CopyFit(out, 3), 2u);
    EXPECT_EQ(std::string(out), std::string(kNihongo, 2));
    EXPECT_EQ(s.CopyFit(out, 2), 0u);
    EXPECT_EQ(out[0], 0);
}

TEST_F(DoubleByteText, ATrailByteIsNeverTakenForADelimiter) {
    CXString s = CXString("a") + kHyou + "\\b";
    EXPECT_EQ(s.Find(KTWCHAR('\\')), 2);
    EXPECT_EQ(s.FindRevOnOf("\\/"), 2);
    EXPECT_EQ(s.FindOnOf("\\/"), 2);
    EXPECT_EQ(std::string(s.GetFileName()), "b");

    CXString name = CXString("C:\\") + kHyou + ".txt";  // no delimiter inside the name
    EXPECT_EQ(std::string(name.GetFileName()), std::string(kHyou) + ".txt");
    EXPECT_EQ(name.GetFilePath(nullptr), 2);
}

TEST_F(DoubleByteText, EditsMoveWholeCharacters) {
    CXString s(kNihongo);
    s.Delete(1, 1);
    EXPECT_EQ(Text(s), std::string(kNihongo, 2) + std::string(kNihongo + 4));
    CXString part;
    EXPECT_EQ(CXString(kNihongo).Extract(1, 1, part), 2);
    EXPECT_EQ(Text(part), kHon);
    s = kNihongo;
    const CXString sharing = s;    // so that the insert gets the exact room it asks for
    s.Insert(1, KTWCHAR(0x82A0));  // hiragana 'a', lead byte first
    EXPECT_EQ(Text(s).substr(2, 2), "\x82\xA0");
    EXPECT_EQ(s.GetAllocSize(), 6 + 3);
    part = KTWCHAR(0x82A0);
    EXPECT_EQ(part.GetAllocSize(), 3);
    s.Replace(0, 2, "x");
    EXPECT_EQ(Text(s), std::string("x") + std::string(kNihongo + 2));
    EXPECT_EQ(s.FindReplace(KTWCHAR(0x967B), KTWCHAR('y')), 1);
    EXPECT_EQ(Text(s), std::string("xy") + std::string(kNihongo + 4));
}

TEST_F(DoubleByteText, TrimRightStepsBackByWholeCharacters) {
    // Lead-class bytes that are trail bytes here: [81 81][81 81], then spaces.
    CXString s("\x81\x81\x81\x81  ");
    EXPECT_EQ(s.GetLength(), 4u);
    s.TrimRight();
    EXPECT_EQ(Text(s), "\x81\x81\x81\x81");
    EXPECT_EQ(s.GetLength(), 2u);
    EXPECT_EQ(s.FindRevOnOf("\x81\x81"), 1);
}

TEST_F(DoubleByteText, ALeadByteAtTheEndStaysInsideTheText) {
    CXString s("ab\x82");
    EXPECT_EQ(s.GetLength(), 3u);
    EXPECT_EQ(s.GetSize(10u), 3u);
    s.TrimRight();
    s.Delete(-1, -1);
    EXPECT_EQ(Text(s), "ab");
}

// A trail byte may have the code of a letter; only whole characters have case.
// Text cut after a lead byte ends there: the case change stops at its end, and
// what lies behind (here "bb") is left alone.
TEST_F(DoubleByteText, CaseChangesWholeCharactersUpToTheEnd) {
    CXString s = CXString("AB") + kKatakanaA;
    s.Lower();
    EXPECT_EQ(Text(s), std::string("ab") + kKatakanaA);
    EXPECT_NE(CXString(kKatakanaA).CompareI(kKatakanaSmallA), 0);

    CXString cut;
    std::memcpy(cut.GetBuffer(6), "a\x82\0bbb", 7);
    cut.ReleaseBuffer(-1);
    cut.Upper();
    EXPECT_EQ(Text(cut), "A\x82");
    EXPECT_EQ(std::string(static_cast<const char*>(cut) + 4, 2), "bb");
    EXPECT_EQ(CXString("a\x82").CompareI("A\x82"), 0);
    EXPECT_LT(CXString("a\x82").CompareIN("A\x83", 5), 0);
}

TEST_F(DoubleByteText, ReducePathStringCountsCharacters) {
    // Every directory name is one character of two bytes.
    CXString path = CXString("C:\\") + kHyou + "\\" + kHon + "\\" + kHyou + "\\file.txt";
    EXPECT_EQ(path.ReducePathString(15), 1);
    EXPECT_EQ(Text(path), std::string("C:\\") + kHyou + "\\...\\file.txt");
}

TEST(CodePages, EachDoubleByteCodePageHasItsLeadBytes) {
    struct Case {
        int codePage;
        unsigned char lead, notLead;
    } cases[] = {{932, 0x81, 0xA0},
                 {932, 0xFC, 0xFD},
                 {936, 0xFE, 0x80},
                 {949, 0x81, 0xFF},
                 {950, 0xA4, 0x7F}};
    for (const Case& c : cases) {
        ScopedCodePage page(c.codePage);
        ASSERT_TRUE(page.ok) << c.codePage;
        EXPECT_NE(_ismbblead(c.lead), 0) << c.codePage;
        EXPECT_EQ(_ismbblead(c.notLead), 0) << c.codePage;
    }
    ScopedCodePage ansi(_MB_CP_ANSI);
    EXPECT_EQ(_ismbblead(0x81), 0);
    EXPECT_EQ(CXString("\x81\x81").GetLength(), 2u);
    EXPECT_EQ(_setmbcp(12345), -1);
}

}  // namespace
}  // namespace kt::test
