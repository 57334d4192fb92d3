// The text form: the marked value of every kind in both directions, the
// logical lines and the grammar as the reader takes them, the writer's exact
// bytes, and the limits of the form's buffers.
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <string>

#include "kticore/core/Exception.h"
#include "kticore/params/ParamTools.h"
#include "tests/params/ParamTestSupport.h"
#include "tests/support/ScratchDirectory.h"

namespace kt::test {
namespace {

Ref<IParam> ReadText(const std::string& text) {
    auto tree = NewTree();
    CXString string(text.c_str());
    EXPECT_EQ(Param_String2Param(string, tree.get()), 1);
    return tree;
}

std::string OneLine(IParam* tree) {
    CXString text;
    EXPECT_EQ(Param_Param2String(tree, text), 1);
    return static_cast<const char*>(text);
}

KTBlob BlobOf(std::initializer_list<unsigned char> bytes) {
    KTBlob blob(static_cast<unsigned long>(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), blob.data);
    return blob;
}

// Names the cases of a table by their `name` field.
struct CaseName {
    template <class Case>
    std::string operator()(const ::testing::TestParamInfo<Case>& test) const {
        return test.param.name;
    }
};

CKTVariant OfKind(const CKTVariant& value, unsigned short kind) {
    CKTVariant typed(value);
    typed.vt = kind;
    return typed;
}

// One row of the marker table: a value and its marked text.
struct MarkedCase {
    const char* name;
    CKTVariant value;
    const char* text;
};

class MarkedValue : public ::testing::TestWithParam<MarkedCase> {};

TEST_P(MarkedValue, IsWrittenAsItsMarkedTextAndReadBack) {
    auto tree = NewTree();
    Set(tree.get(), "v", GetParam().value);
    EXPECT_EQ(OneLine(tree.get()), std::string("[\\]\t\t|v=") + GetParam().text + "|");
    auto back = ReadText(std::string("[\\]|v=") + GetParam().text);
    const CKTVariant read = ValueAt(back.get(), "v");
    EXPECT_EQ(read.vt, GetParam().value.vt);
    EXPECT_TRUE(read == GetParam().value);
}

const tagRECT kRect{1, 2, 30, 40};
const tagRRECT kRealRect{1, 2, 3, 4.25};

INSTANTIATE_TEST_SUITE_P(
    EveryRow, MarkedValue,
    ::testing::Values(
        MarkedCase{"Empty", CKTVariant(), "e"},
        MarkedCase{"True", CKTVariant(1, KTVT_BOOL), "f1"},
        MarkedCase{"False", CKTVariant(0, KTVT_BOOL), "f0"},
        MarkedCase{"Byte", CKTVariant(static_cast<unsigned char>(0xA5)), "bA5"},
        MarkedCase{"Word", CKTVariant(static_cast<unsigned short>(65535)), "w65535"},
        MarkedCase{"UnsignedLong", CKTVariant(4294967295ul), "W4294967295"},
        MarkedCase{"Int", CKTVariant(-5), "i-5"},
        MarkedCase{"UnsignedInt", CKTVariant(7u), "u7"},
        MarkedCase{"Long", OfKind(CKTVariant(-2147483647 - 1), KTVT_LONG), "l-2147483648"},
        MarkedCase{"Double", CKTVariant(1.5), "R1.5"},
        MarkedCase{"LargeDouble", CKTVariant(1e20), "R1e+20"},
        MarkedCase{"SmallDouble", CKTVariant(-2.5e-7), "R-2.5e-07"},
        MarkedCase{"Float", CKTVariant(0.25f), "r0.25"},
        MarkedCase{"Text", CKTVariant("a b"), "sa b"},
        MarkedCase{"Size", CKTVariant(tagSIZE{1, -2}), "z1,-2"},
        MarkedCase{"RealSize", CKTVariant(tagRSIZE{1.5, 2}), "Z1.5,2"},
        MarkedCase{"Point", CKTVariant(tagPOINT{3, 4}), "p3,4"},
        MarkedCase{"RealPoint", CKTVariant(tagRPOINT{0.5, -0.5}), "P0.5,-0.5"},
        MarkedCase{"Rect", CKTVariant(kRect), "t1,2,30,40"},
        MarkedCase{"RealRect", CKTVariant(kRealRect), "T1,2,3,4.25"},
        MarkedCase{"Blob", CKTVariant(BlobOf({0x0A, 0xFF, 0x00})), "x0AFF00"}),
    CaseName());

TEST(MarkedValueWriting, WideTextGoesAsNarrowTextAndObjectsNotAtAll) {
    CCounted object;
    auto tree = NewTree();
    Set(tree.get(), "w", CKTVariant(KTW("wide")));
    Set(tree.get(), "o", CKTVariant(static_cast<IKTUnknown*>(&object)));
    EXPECT_EQ(OneLine(tree.get()), "[\\]\t\t|w=swide|");  // read back in RoundTrip
}

TEST(MarkedValueWriting, RealsKeepFourteenSignificantDigits) {
    auto tree = NewTree();
    Set(tree.get(), "v", CKTVariant(1.0 / 3));
    EXPECT_EQ(OneLine(tree.get()), "[\\]\t\t|v=R0.33333333333333|");
}

// A blob whose entry would not fit the form's buffers is written with no
// digits, as one of 32768 bytes or more always is, and reads back empty;
// the rest of the tree is written all the same.
TEST(MarkedValueWriting, ABlobTooLongForItsEntryIsWrittenWithoutDigits) {
    ScratchDirectory directory;
    const auto file = directory / KTW("tree.ini");
    for (const unsigned long size : {32764ul, 32765ul, 32767ul, 32768ul}) {
        auto tree = NewTree();
        Set(tree.get(), "v", CKTVariant(KTBlob(size)));
        Set(tree.get(), "w", CKTVariant(1));
        EXPECT_EQ(Param_Param2IniFile(tree.get(), file.c_str()), 1);
        const bool fits = size == 32764;  // "\t| v=x" and its digits take 65534 bytes
        const std::string written = fits ? "\t\r\n\t| v=x" + std::string(2 * size, '0') + "\r\n" : "\t\t| v=x";
        EXPECT_EQ(ContentOf(file), "\r\n[\\]" + written + "\t| w=i1") << size;

        auto back = NewTree();
        EXPECT_EQ(Param_IniFile2Param(file.c_str(), back.get()), 1);
        EXPECT_EQ(ValueAt(back.get(), "v").blobVal.size, fits ? size : 0u) << size;
        EXPECT_EQ(static_cast<int>(ValueAt(back.get(), "w")), 1) << size;
    }
}

// The real rule reads what the C library's strtod reads in the "C" locale,
// which the tests run in: the same value, and no value where strtod consumes
// nothing. Behind the marker the text stands as written.
TEST(RealRule, ReadsWhatStrtodReads) {
    const char* const texts[] = {
        "1.5",   " -2.5e3", "+.5",          "--1",        "+-2",          "-+3",   "- 1",
        "0x1p4", "0x.8p1",  "0x.",          "0x",         "0xep-99999",   "0x1p-99999",
        "0X1P",  "0x.p1",   "0x-1",         "1e-99999",   "1e99999",      "-0x1p99999",
        "inf",   "-Infinity", "nan",        ".",          "e5",           "1e",
        "1.5.2", "00.5e+1", "2.4e-320",     "4.9406564584125e-324",       "1e-330"};
    for (const char* text : texts) {
        char* end = nullptr;
        const double expected = std::strtod(text, &end);
        const CKTVariant read = ValueAt(ReadText(std::string("[\\]|v=R") + text).get(), "v");
        if (end == text) {
            EXPECT_EQ(read.vt, kMissing) << text;
            continue;
        }
        const double value = read.vt == KTVT_DOUBLE ? read.dblVal : -1234.5;
        EXPECT_TRUE(std::isnan(expected) ? std::isnan(value)
                                         : value == expected && std::signbit(value) == std::signbit(expected))
            << text << " reads " << value << ", strtod gives " << expected;
    }
}

// What a text reads as: the value at `path`, or kMissing.
struct ReadCase {
    const char* name;
    const char* text;
    const char* path;
    CKTVariant expected;
};

class TextReading : public ::testing::TestWithParam<ReadCase> {};

TEST_P(TextReading, GivesTheValueTheGrammarSays) {
    auto tree = ReadText(GetParam().text);
    const CKTVariant read = ValueAt(tree.get(), GetParam().path);
    ASSERT_EQ(read.vt, GetParam().expected.vt);
    if (read.vt != kMissing) {
        EXPECT_TRUE(read == GetParam().expected);
    }
}

CKTVariant Missing() { return OfKind(CKTVariant(), kMissing); }

INSTANTIATE_TEST_SUITE_P(
    Grammar, TextReading,
    ::testing::Values(
        ReadCase{"PipeEndsATextValue", "[\\]|Title=sa|b=i1", "Title", CKTVariant("a")},
        ReadCase{"PipeStartsTheNextValue", "[\\]|Title=sa|b=i1", "b", CKTVariant(1)},
        ReadCase{"BlanksAfterTheMarkerStay", "[\\]|name=s  text", "name", CKTVariant("  text")},
        ReadCase{"BlanksAroundTheEqualsGo", "[\\]|name \t=  i3", "name", CKTVariant(3)},
        ReadCase{"NoValueStoresNothing", "[\\]|name=", "name", Missing()},
        ReadCase{"MarkerEIsEmpty", "[\\]|name=e anything", "name", CKTVariant()},
        ReadCase{"ABareNameIsTheIntegerZero", "[\\]|name", "name", CKTVariant(0)},
        ReadCase{"AOneLetterLineIsIgnored", "[\\]|a", "a", Missing()},
        ReadCase{"ATwoLetterLineIsAValue", "[\\]|ab", "ab", CKTVariant(0)},
        ReadCase{"UnknownMarker", "[\\]|v=q1", "v", Missing()},
        ReadCase{"ValueBeforeAnySection", "v=i1|[\\]", "v", Missing()},
        ReadCase{"TheCharacterAfterTheBracketIsSkipped", "[abc]|v=i1", "bc\\v", CKTVariant(1)},
        ReadCase{"ASectionLineNamesAPath", "[\\a\\b]|v=i2", "a\\b\\v", CKTVariant(2)},
        ReadCase{"TextBehindTheBracketIsPartOfTheName", "[\\a] x|v=i2", "a] x\\v", CKTVariant(2)},
        ReadCase{"BackToTheRoot", "[\\a]|[\\]|v=i4", "v", CKTVariant(4)},
        ReadCase{"CommentSwallowsTheRestOfTheLine", "[\\]|a=i1|;x|b=i2", "b", Missing()},
        ReadCase{"CommentLeavesWhatCameBefore", "[\\]|a=i1|;x|b=i2", "a", CKTVariant(1)},
        ReadCase{"AOneLetterNameIsNoDirective", "[\\]|#a", "#a", CKTVariant(0)},
        ReadCase{"OtherDirectivesAreIgnored", "[\\]|#define x|v=i1", "#define x", Missing()},
        ReadCase{"BooleanYes", "[\\]|v=fy", "v", CKTVariant(1, KTVT_BOOL)},
        ReadCase{"BooleanNo", "[\\]|v=fN", "v", CKTVariant(0, KTVT_BOOL)},
        ReadCase{"BooleanTwoFails", "[\\]|v=f2", "v", Missing()},
        ReadCase{"ByteNeedsTwoDigits", "[\\]|v=bA", "v", Missing()},
        ReadCase{"WordOfSeventyThousandFails", "[\\]|v=w70000", "v", Missing()},
        ReadCase{"UnsignedLongOfSeventyThousand", "[\\]|v=W70000", "v", CKTVariant(70000ul)},
        ReadCase{"HexadecimalWithPrefix", "[\\]|v=i0x10", "v", CKTVariant(16)},
        ReadCase{"AnXAnywhereMeansBase16", "[\\]|v=i12x", "v", CKTVariant(18)},
        ReadCase{"NoDigitBeforeTheX", "[\\]|v=ix10", "v", Missing()},
        ReadCase{"SignedHeldAtItsLimit", "[\\]|v=i99999999999", "v", CKTVariant(2147483647)},
        ReadCase{"UnsignedMinusWraps", "[\\]|v=u-1", "v", CKTVariant(4294967295u)},
        ReadCase{"ListBase16ForAll", "[\\]|v=z10,0x20", "v", CKTVariant(tagSIZE{16, 32})},
        ReadCase{"ListSkipsToTheComma", "[\\]|v=z1;2,3", "v", CKTVariant(tagSIZE{1, 3})},
        ReadCase{"ListTooShort", "[\\]|v=t1,2,3", "v", Missing()},
        ReadCase{"RealListTooShort", "[\\]|v=Z1.5", "v", Missing()},
        ReadCase{"RealWithoutDigits", "[\\]|v=Rabc", "v", Missing()},
        ReadCase{"RealTooLarge", "[\\]|v=R-1e400", "v", CKTVariant(-HUGE_VAL)},
        ReadCase{"BlobOneByte", "[\\]|v=x0A", "v", CKTVariant(BlobOf({10}))},
        ReadCase{"BlobSkipsAndHalves", "[\\]|v=x0a 1", "v", CKTVariant(BlobOf({10, 16}))},
        ReadCase{"BlobKeepsSizeForSkippedCharacters", "[\\]|v=x0A--", "v", CKTVariant(BlobOf({10, 0}))},
        ReadCase{"ALineFeedAloneEndsTheInput", "\n[\\]\r\nv=i1", "v", Missing()},
        ReadCase{"CarriageReturnAndLineFeed", "[\\]\r\nv=i1\r\n", "v", CKTVariant(1)}),
    CaseName());

// The text of the form's example: values on the line of their section's
// header, values before sub-sections, nothing behind the last value.
TEST(TextWriting, TheFileFormIsExact) {
    ScratchDirectory directory;
    auto tree = NewTree();
    Set(tree.get(), "Title", CKTVariant("abc"));
    Set(tree.get(), "Sub\\On", CKTVariant(1, KTVT_BOOL));
    const auto file = directory / KTW("tree.ini");
    EXPECT_EQ(Param_Param2IniFile(tree.get(), file.c_str()), 1);
    EXPECT_EQ(ContentOf(file), "\r\n[\\]\t\t| Title=sabc\r\n[\\Sub]\t\t| On=f1");

    auto back = NewTree();
    EXPECT_EQ(Param_IniFile2Param(file.c_str(), back.get()), 1);
    EXPECT_EQ(Param_Cmp(tree.get(), back.get()), 1);
    EXPECT_EQ(Param_Cmp(back.get(), tree.get()), 1);
}

// A line end in a name or a text would start a line of its own, and a name
// can read as another line, as more than one value or as another name: the
// writer refuses them rather than write what reads back as other values or
// sections.
TEST(TextWriting, WhatWouldNotReadBackAsWrittenIsRefused) {
    struct Case {
        const char* path;
        CKTVariant value;
    };
    const Case cases[] = {
        {"v", CKTVariant("a\r\nb=i7")}, {"v", CKTVariant("a\rb")}, {"v", CKTVariant(KTW("a\nb=i7"))},
        {"a\nb", CKTVariant(1)},         {"s\r\n[\\x]\\v", CKTVariant(1)},
        {"#a", CKTVariant(1)},            {";a", CKTVariant(1)},                   {"[a", CKTVariant(1)},
        {"a|b", CKTVariant(1)},           {"a=b", CKTVariant(1)},                  {"s|x\\v", CKTVariant(1)},
        {" a", CKTVariant(1)},            {"a\t", CKTVariant(1)},
        {"\\v", CKTVariant(1)},  // the root's section of no name has the root's header
    };
    for (const Case& c : cases) {
        auto tree = NewTree();
        Set(tree.get(), c.path, c.value);
        CXString text;
        EXPECT_EQ(FailureOf([&] { Param_Param2String(tree.get(), text); }),
                  static_cast<DWORD>(XE_BAD_ARGUMENT))
            << c.path;
    }
    // Below that section, names come back: "[\\x]".
    auto tree = NewTree();
    Set(tree.get(), "\\x\\v", CKTVariant(1));
    auto back = ReadText(OneLine(tree.get()));
    EXPECT_EQ(Param_Cmp(back.get(), tree.get()), 1);
    EXPECT_EQ(Param_Cmp(tree.get(), back.get()), 1);
}

TEST(TextWriting, TheOneLineFormIsExact) {
    auto tree = NewTree();
    EXPECT_EQ(OneLine(tree.get()), "[\\]\t|");
    Set(tree.get(), "Width", CKTVariant(640));
    EXPECT_EQ(OneLine(tree.get()), "[\\]\t\t|Width=i640|");
    Ref<IParam> sub(tree->CreateSection("Sub"));
    // The last header keeps its tab: the scratch file's zero bytes stand behind it.
    EXPECT_EQ(OneLine(tree.get()), "[\\]\t\t|Width=i640|[\\Sub]\t|");
    CXString text;
    EXPECT_EQ(Param_Param2String(nullptr, text), 0);
    EXPECT_EQ(Param_String2Param(text, nullptr), 0);
}

TEST(TextReadingLocale, RealsIgnoreADecimalComma) {
    const std::string saved = std::setlocale(LC_ALL, nullptr);
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr && std::setlocale(LC_ALL, "German") == nullptr)
        GTEST_SKIP() << "no locale with a decimal comma";
    auto tree = NewTree();
    Set(tree.get(), "v", CKTVariant(2.75));
    const std::string line = OneLine(tree.get());
    auto back = ReadText("[\\]|v=R1.5");
    std::setlocale(LC_ALL, saved.c_str());
    EXPECT_EQ(line, "[\\]\t\t|v=R2.75|");
    EXPECT_EQ(static_cast<double>(ValueAt(back.get(), "v")), 1.5);
}

// Reading sections of many levels and paths with empty parts.
TEST(TextReadingPaths, ThreeHundredLevelsAndEmptyParts) {
    std::string path;
    for (int level = 0; level < 300; ++level)
        path += "\\a";
    auto tree = ReadText("[" + path + "]|v=i1|[\\x\\\\y\\]|w=i2");
    Ref<IParam> deepest(tree->GetSection(path.substr(1).c_str(), 0));
    ASSERT_NE(deepest, nullptr);
    EXPECT_EQ(static_cast<int>(ValueAt(deepest.get(), "v")), 1);
    EXPECT_EQ(static_cast<int>(ValueAt(tree.get(), "x\\\\y\\\\w")), 2);
}

}  // namespace
}  // namespace kt::test
