#include "kticore/values/Variant.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "tests/support/Counted.h"
#include "tests/support/WideText.h"

namespace {

using kt::test::CCounted;
using kt::test::W;
using kt::test::Wide;

bool IsAllZero(const tagKTVARIANT& v) {
    tagKTVARIANT empty;
    KTVariantInit(&empty);
    return std::memcmp(&v, &empty, sizeof v) == 0;
}

CKTVariant NarrowVariant(const std::string& text) { return CKTVariant(text.c_str()); }

CKTVariant WideVariant(const std::string& ascii) { return CKTVariant(W(ascii).c_str()); }

CKTVariant OfUnknownKind(unsigned short vt) {
    CKTVariant v;
    v.vt = vt;
    return v;
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr LONG kLongMin = std::numeric_limits<LONG>::min();
const CKTVariant kFails;  // what a failed conversion leaves

// Equal values, and reals of the same sign: == takes -0.0 for 0.0.
bool Same(const CKTVariant& a, const CKTVariant& b) {
    if (a.vt == KTVT_DOUBLE && b.vt == KTVT_DOUBLE && std::signbit(a.dblVal) != std::signbit(b.dblVal))
        return false;
    if (a.vt == KTVT_FLOAT && b.vt == KTVT_FLOAT && std::signbit(a.fltVal) != std::signbit(b.fltVal))
        return false;
    return a == b;
}

struct Conversion {
    CKTVariant source;
    unsigned short target;
    bool converts;
    CKTVariant expected;
};

// Converts into a variant that holds a text (which must go) and in place: a
// success gives the expected value both ways; a failure leaves the other
// variant empty and the converted one as it was.
void ExpectConversions(const std::vector<Conversion>& cases) {
    for (size_t i = 0; i < cases.size(); ++i) {
        const Conversion& c = cases[i];
        SCOPED_TRACE(testing::Message() << "case " << i << ": kind " << c.source.vt << " to "
                                        << c.target);
        CKTVariant into("left over");
        EXPECT_EQ(KTVariantChangeType(&into, &c.source, c.target), c.converts ? 1 : 0);
        if (c.converts) {
            EXPECT_EQ(into.vt, c.target);
            EXPECT_TRUE(Same(into, c.expected));
        } else {
            EXPECT_TRUE(IsAllZero(into));
        }
        CKTVariant inPlace(c.source);
        EXPECT_EQ(KTVariantChangeType(&inPlace, &inPlace, c.target), c.converts ? 1 : 0);
        EXPECT_TRUE(Same(inPlace, c.converts ? c.expected : c.source));
    }
}

TEST(VariantConversion, NumbersAndBooleansByTargetRow) {
    using Byte = unsigned char;
    using Word = unsigned short;
    const CKTVariant yes(1, KTVT_BOOL), no(0, KTVT_BOOL);
    constexpr float kFloatInfinity = std::numeric_limits<float>::infinity();
    ExpectConversions({
        // Anything becomes empty; an unknown kind becomes nothing else.
        {"text", KTVT_EMPTY, true, kFails}, {OfUnknownKind(1000), KTVT_EMPTY, true, kFails},
        {1, 20, false, kFails}, {1, KTVT_BORROWED + 1, false, kFails},
        // Booleans: from numbers by != 0, never from text.
        {kFails, KTVT_BOOL, true, no}, {-5, KTVT_BOOL, true, yes}, {-0.5, KTVT_BOOL, true, yes},
        {0.0f, KTVT_BOOL, true, no}, {Word{0}, KTVT_BOOL, true, no},
        {"Yes", KTVT_BOOL, false, kFails},
        // Bytes and words: the low bits of integers; no real, no text.
        {300, KTVT_BYTE, true, Byte{44}}, {yes, KTVT_BYTE, true, Byte{1}},
        {Word{0x1234}, KTVT_BYTE, true, Byte{0x34}}, {0x12345, KTVT_WORD, true, Word{0x2345}},
        {Byte{200}, KTVT_WORD, true, Word{200}}, {1.0, KTVT_BYTE, false, kFails},
        {"5", KTVT_BYTE, false, kFails},
        // Unsigned long: no float and no wide text, unlike its sisters.
        {-1, KTVT_ULONG, true, 4294967295ul}, {4294967295.0, KTVT_ULONG, true, 4294967295ul},
        {-1.0, KTVT_ULONG, true, 4294967295ul}, {"-1", KTVT_ULONG, true, 4294967295ul},
        {1.0f, KTVT_ULONG, false, kFails}, {WideVariant("5"), KTVT_ULONG, false, kFails},
        // Int and long: reals cut toward zero in 32 bits; text as %d reads it.
        {3.7, KTVT_INT, true, 3}, {-3.7, KTVT_INT, true, -3}, {2.9f, KTVT_INT, true, 2},
        {3e9, KTVT_INT, true, std::numeric_limits<int>::min()},  // the processor's answer
        {4294967295ul, KTVT_INT, true, -1}, {"12abc", KTVT_INT, true, 12},
        {" \t-7", KTVT_INT, true, -7}, {"+15", KTVT_LONG, true, 15l},
        {"4294967297", KTVT_INT, true, 1},  // runs over as the runtime's scanner does
        {WideVariant("-8"), KTVT_INT, true, -8}, {-2.5, KTVT_LONG, true, -2l},
        {WideVariant("0x10"), KTVT_LONG, true, 0l},
        // Unsigned int: reals through 64 bits, so all of 0 to 4294967295 survive.
        {4294967295.0, KTVT_UINT, true, 4294967295u}, {4294967301.0, KTVT_UINT, true, 5u},
        {3e9f, KTVT_UINT, true, 3000000000u}, {"-1", KTVT_UINT, true, 4294967295u},
        // Reals: integers by their sign; text as %lf and %f read it.
        {-1, KTVT_DOUBLE, true, -1.0}, {4294967295ul, KTVT_DOUBLE, true, 4294967295.0},
        {CKTVariant(3, KTVT_BOOL), KTVT_DOUBLE, true, 1.0}, {0.5f, KTVT_DOUBLE, true, 0.5},
        {"3.75e2x", KTVT_DOUBLE, true, 375.0}, {"-1e999", KTVT_DOUBLE, true, -kInfinity},
        {tagSIZE{1, 2}, KTVT_DOUBLE, false, kFails}, {0.1, KTVT_FLOAT, true, 0.1f},
        // Straight to a float: through a double this would round to 1.
        {"1.0000000596046447753906251", KTVT_FLOAT, true, 1.0f + FLT_EPSILON},
        {WideVariant("1e39"), KTVT_FLOAT, true, kFloatInfinity},
        // Beyond the range, by the order of the whole number, not the exponent's sign.
        {NarrowVariant("0x." + std::string(40, '0') + "1"), KTVT_FLOAT, true, 0.0f},
        {NarrowVariant("1" + std::string(45, '0') + "e-2"), KTVT_FLOAT, true, kFloatInfinity},
        {WideVariant("-0." + std::string(50, '0') + "1e3"), KTVT_FLOAT, true, -0.0f},
        // Sources of an unknown kind give a zero value.
        {OfUnknownKind(KTVT_BORROWED), KTVT_INT, true, 0},
        {OfUnknownKind(20), KTVT_DOUBLE, true, 0.0},
    });
}

// The texts of reals as the runtime's sscanf and swscanf with %lf and %f
// read them, in glibc and in the C99 scanner of mingw-w64 alike.
TEST(VariantConversion, RealScansAnswerAsTheRuntimeScanner) {
    const struct {
        const char* text;
        bool scans;
        double value;
    } cases[] = {
        {"0x", false, 0.0},  {"-0x", false, 0.0},    {"0x.", true, 0.0},
        {"0x1p4", true, 16.0}, {"0x1p", true, 1.0},  {"1.5e+", true, 1.5},
        {"100ergs", true, 100.0}, {"inf", true, kInfinity}, {"-infinity", true, -kInfinity},
        {"infin", false, 0.0},
        {"nan(12)", true, NAN}, {"nan(", true, NAN}, {"\v\t\n2.5", true, 2.5},
        {"+.5", true, 0.5},   {"in", false, 0.0},
    };
    for (const auto& c : cases) {
        for (const CKTVariant& text : {NarrowVariant(c.text), WideVariant(c.text)}) {
            for (const unsigned short kind : {KTVT_DOUBLE, KTVT_FLOAT}) {
                SCOPED_TRACE(testing::Message() << '"' << c.text << "\" of kind " << text.vt << " to " << kind);
                CKTVariant real;
                ASSERT_EQ(KTVariantChangeType(&real, &text, kind), c.scans ? 1 : 0);
                if (!c.scans)
                    continue;
                const double value = kind == KTVT_DOUBLE ? real.dblVal : real.fltVal;
                if (std::isnan(c.value))
                    EXPECT_TRUE(std::isnan(value));
                else
                    EXPECT_EQ(value, c.value);
            }
        }
    }
}

// A host that sets a locale with a comma for its point reads and writes "1,5".
TEST(VariantConversion, RealsFollowThePointOfTheLocale) {
    const char* const withComma[] = {"de_DE.UTF-8", "de_DE", "fr_FR.UTF-8", "German_Germany.1252", "de-DE"};
    const char* chosen = nullptr;
    for (const char* name : withComma) {
        if (std::setlocale(LC_NUMERIC, name) != nullptr && *std::localeconv()->decimal_point == ',') {
            chosen = name;
            break;
        }
    }
    if (chosen == nullptr) {
        std::setlocale(LC_NUMERIC, "C");
        GTEST_SKIP() << "no locale with a decimal comma here";
    }
    SCOPED_TRACE(chosen);
    ExpectConversions({
        {1.5, KTVT_STR, true, "1,5"},
        {2.25f, KTVT_WSTR, true, W("2,25").c_str()},
        {"1,5", KTVT_DOUBLE, true, 1.5},
        {WideVariant("-2,5e1"), KTVT_FLOAT, true, -25.0f},
        {"1.5", KTVT_DOUBLE, true, 1.0},
    });
    std::setlocale(LC_NUMERIC, "C");
}

TEST(VariantConversion, TextsThatAreNoNumbersFail) {
    for (const char* text : {"", "   ", "abc", "-", "+x", ".", "e5", "\xE9"}) {
        for (const unsigned short kind : {KTVT_INT, KTVT_UINT, KTVT_DOUBLE, KTVT_FLOAT}) {
            SCOPED_TRACE(testing::Message() << '"' << text << "\" to " << kind);
            ExpectConversions({{text, kind, false, kFails}, {WideVariant(text), kind, false, kFails}});
        }
    }
}

TEST(VariantConversion, TextFormsByTargetRow) {
    const CKTVariant yes(1, KTVT_BOOL);
    const KTWCHAR wideCafe[] = {'c', 'a', 'f', 0xE9, 0};
    ExpectConversions({
        {kFails, KTVT_STR, true, ""}, {yes, KTVT_STR, true, "Yes"},
        {CKTVariant(0, KTVT_BOOL), KTVT_STR, true, "No"},
        {static_cast<unsigned char>(200), KTVT_STR, true, "200"},
        {static_cast<unsigned short>(65535), KTVT_STR, true, "65535"},
        {4294967295ul, KTVT_STR, true, "4294967295"},
        {std::numeric_limits<int>::min(), KTVT_STR, true, "-2147483648"},
        {0.1, KTVT_STR, true, "0.1"}, {123456789.0, KTVT_STR, true, "1.23457e+08"},
        {0.0001, KTVT_STR, true, "0.0001"}, {0.00001, KTVT_STR, true, "1e-05"},
        {1e20, KTVT_STR, true, "1e+20"},
        {-0.0, KTVT_STR, true, "-0"}, {-kInfinity, KTVT_STR, true, "-inf"},
        {0.1f, KTVT_STR, true, "0.1"}, {kFails, KTVT_WSTR, true, W("").c_str()},
        {yes, KTVT_WSTR, true, W("Yes").c_str()}, {2.5f, KTVT_WSTR, true, W("2.5").c_str()},
        {WideVariant("abc"), KTVT_WSTR, true, W("abc").c_str()},
        // Texts of the code page cross widths unchanged.
        {"caf\xE9", KTVT_WSTR, true, wideCafe}, {wideCafe, KTVT_STR, true, "caf\xE9"},
        // Records, blobs and objects have no text form here.
        {tagPOINT{1, 2}, KTVT_STR, false, kFails},
        {tagKTBLOB{0, nullptr}, KTVT_WSTR, false, kFails},
        {CKTVariant(static_cast<IKTUnknown*>(nullptr)), KTVT_STR, false, kFails},
        // An unknown source gives a null text.
        {OfUnknownKind(KTVT_BORROWED), KTVT_STR, true, static_cast<const char*>(nullptr)},
    });
}

TEST(VariantConversion, RecordsOnlyBecomeTheirTwins) {
    ExpectConversions({
        {tagRSIZE{3.7, -3.7}, KTVT_SIZE, true, tagSIZE{4, -4}},
        {tagSIZE{1, -2}, KTVT_RSIZE, true, tagRSIZE{1.0, -2.0}},
        // Rounding takes away less than a half below zero.
        {tagRPOINT{2.5, -2.5}, KTVT_POINT, true, tagPOINT{3, -2}},
        {tagRPOINT{-2.6, -0.49999995}, KTVT_POINT, true, tagPOINT{-3, 0}},
        {tagRPOINT{0.49999999, -0.5000001}, KTVT_POINT, true, tagPOINT{0, -1}},
        {tagRPOINT{2147483647.4, -2147483648.4}, KTVT_POINT, true, tagPOINT{2147483647, kLongMin}},
        {tagPOINT{7, 8}, KTVT_RPOINT, true, tagRPOINT{7.0, 8.0}},
        {tagRRECT{0.0, 0.0, 9.0, 9.0}, KTVT_RECT, true, tagRECT{0, 0, 10, 10}},
        {tagRRECT{-2.6, 1.2, 3.4, 3.5}, KTVT_RECT, true, tagRECT{-3, 1, 4, 5}},
        {tagRECT{0, 0, 10, 10}, KTVT_RRECT, true, tagRRECT{0.0, 0.0, 9.0, 9.0}},
        {tagRECT{3, 4, 5, 6}, KTVT_RECT, true, tagRECT{3, 4, 5, 6}},
        // A size is no point, a number no size, and empty is no record.
        {tagPOINT{1, 2}, KTVT_SIZE, false, kFails}, {5, KTVT_POINT, false, kFails},
        {kFails, KTVT_SIZE, false, kFails}, {tagRECT{0, 0, 1, 1}, KTVT_INT, false, kFails},
        {OfUnknownKind(30), KTVT_RPOINT, true, tagRPOINT{0.0, 0.0}},
    });
}

TEST(VariantConversion, RectanglesGoBothWaysOnIntegers) {
    for (const tagRECT& r : {tagRECT{0, 0, 10, 10}, tagRECT{-5, -7, -5, 3},
                             tagRECT{kLongMin, 0, std::numeric_limits<LONG>::max(), 1},
                             tagRECT{0, 0, kLongMin, kLongMin}}) {
        CKTVariant v(r);
        ASSERT_EQ(v.ChangeType(KTVT_RRECT), 1);
        ASSERT_EQ(v.ChangeType(KTVT_RECT), 1);
        EXPECT_EQ(std::memcmp(&v.rcVal, &r, sizeof r), 0);
    }
}

TEST(VariantConversion, NullTextsFailToScanAndCrossWidthsAsEmptyText) {
    const CKTVariant narrow(static_cast<const char*>(nullptr));
    const CKTVariant wide(static_cast<const KTWCHAR*>(nullptr));
    ExpectConversions({
        {narrow, KTVT_INT, false, kFails},
        {wide, KTVT_DOUBLE, false, kFails},
        {narrow, KTVT_WSTR, true, W("").c_str()},
        {wide, KTVT_STR, true, ""},
        {narrow, KTVT_STR, true, narrow},
        {wide, KTVT_WSTR, true, wide},
    });
    CKTVariant converted;
    ASSERT_EQ(KTVariantChangeType(&converted, &narrow, KTVT_WSTR), 1);
    EXPECT_NE(converted.pwszVal, nullptr);
}

TEST(VariantConversion, CopiesOwnWhatTheyHold) {
    unsigned char bytes[] = {1, 2, 3};
    CKTVariant blob(tagKTBLOB{3, bytes}), copy;
    ASSERT_EQ(copy.ChangeType(KTVT_BLOB, &blob), 1);
    EXPECT_TRUE(copy == blob);
    EXPECT_NE(copy.blobVal.data, blob.blobVal.data);

    CKTVariant text("abc"), other("xyz");
    const char* const before = text.pszVal;
    EXPECT_EQ(text.ChangeType(KTVT_STR), 1);  // the member does nothing for its own kind
    EXPECT_EQ(text.pszVal, before);
    EXPECT_EQ(KTVariantChangeType(&text, &text, KTVT_STR), 1);
    EXPECT_NE(text.pszVal, before);
    EXPECT_STREQ(text.pszVal, "abc");
    EXPECT_EQ(text.ChangeType(KTVT_STR, &other), 1);  // from another variant, it converts
    EXPECT_STREQ(text.pszVal, "xyz");
    EXPECT_NE(text.pszVal, other.pszVal);
}

TEST(VariantConversion, NullVariantsAreRefused) {
    CKTVariant text("abc");
    EXPECT_EQ(KTVariantChangeType(nullptr, &text, KTVT_INT), 0);
    EXPECT_EQ(KTVariantChangeType(&text, nullptr, KTVT_INT), 0);
    EXPECT_STREQ(text.pszVal, "abc");
}

TEST(VariantConversion, ObjectsAreReferencedButNotWhenBorrowed) {
    auto* object = new CCounted;
    {
        CKTVariant held(static_cast<IKTUnknown*>(object));
        CKTVariant copy, borrowed;
        ASSERT_EQ(KTVariantChangeType(&copy, &held, KTVT_OBJECT), 1);
        EXPECT_EQ(copy.punkVal, object);
        ASSERT_EQ(KTVariantChangeType(&borrowed, &held, KTVT_BORROWED), 1);
        EXPECT_EQ(borrowed.vt, KTVT_BORROWED);
        EXPECT_EQ(borrowed.punkVal, object);
        EXPECT_EQ(object->References(), 3u);
        borrowed.Clear();
        EXPECT_EQ(object->References(), 3u);
        // Only an object can be borrowed; anything unknown gives a null one,
        // releasing what the target held.
        EXPECT_EQ(KTVariantChangeType(&borrowed, &kFails, KTVT_BORROWED), 0);
        const CKTVariant unknown = OfUnknownKind(KTVT_BORROWED);
        for (const unsigned short kind : {KTVT_BORROWED, KTVT_OBJECT}) {
            ASSERT_EQ(KTVariantChangeType(&copy, &unknown, kind), 1);
            EXPECT_EQ(copy.vt, kind);
            EXPECT_EQ(copy.punkVal, nullptr);
        }
        EXPECT_EQ(object->References(), 2u);
    }
    EXPECT_EQ(object->References(), 1u);
    object->Release();
}

}  // namespace
