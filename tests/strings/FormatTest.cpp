// Format prints alike on both builds and in both widths, and its estimate of
// the length is never short of what it prints.
#include <gtest/gtest.h>

#include <cstdarg>
#include <new>
#include <random>
#include <string>

#include "tests/support/FormatEstimate.h"
#include "tests/support/StringWidths.h"
#include "tests/support/WideText.h"

namespace kt::test {
namespace {

using NarrowEstimate = FormatEstimate<CXString, char>;
using WideEstimate = FormatEstimate<CXStringW, KTWCHAR>;

template <class... Args>
std::string Narrow(const char* format, Args... args) {
    CXString s;
    s.Format(format, args...);
    return static_cast<const char*>(s);
}

template <class... Args>
WideString WideFormat(const KTWCHAR* format, Args... args) {
    CXStringW s;
    s.Format(format, args...);
    return static_cast<const KTWCHAR*>(s);
}

TEST(Format, EstimatesFollowTheWalkOfTheFormat) {
    NarrowEstimate estimate;
    EXPECT_EQ(estimate(""), 0);
    EXPECT_EQ(estimate("%d items", 5), 38);
    EXPECT_EQ(estimate("%-10s|", "abc"), 11);
    EXPECT_EQ(estimate("%.2s", "abcd"), 2);
    EXPECT_EQ(estimate("%10.3f", 1.0), 128);
    EXPECT_EQ(estimate("%100.50f", 1.0), 150);
    EXPECT_EQ(estimate("%#x", 1), 34);
    EXPECT_EQ(estimate("%5c", 'a'), 5);
    EXPECT_EQ(estimate("100%%"), 4);
    EXPECT_EQ(estimate("%*d", 40, 1), 40);
    EXPECT_EQ(estimate("%.0f", 1.0), 128);
    EXPECT_EQ(estimate("%ls", KTW("abc")), 3);
    EXPECT_EQ(estimate("%d%", 1), 32);  // a lone '%' ends the walk
    EXPECT_EQ(estimate("ab%#"), 4);     // flags count even where the format ends
    EXPECT_EQ(estimate("%5E"), 1);      // no conversion, but its letter is printed
}

TEST(Format, TheWideEstimateCountsLiteralsGenerously) {
    WideEstimate estimate;
    EXPECT_EQ(estimate(KTW("")), 0);
    EXPECT_EQ(estimate(KTW("ab")), 2 + 1);
    EXPECT_EQ(estimate(KTW("%d")), 32);
    EXPECT_EQ(estimate(KTW("%#")), 2);
    EXPECT_EQ(estimate(KTW("%hs"), "abcd"), 4);
    EXPECT_EQ(estimate(KTW("%S"), "abcd"), 4);
    EXPECT_EQ(estimate(KTW("%s"), KTW("abcd")), 4);
}

TEST(Format, NarrowConversionsPrintTheSameOnEveryBuild) {
    EXPECT_EQ(Narrow("%d|%5d|%-5d|%05d|%+d|% d", 42, 42, 42, 42, 42, 42),
              "42|   42|42   |00042|+42| 42");
    EXPECT_EQ(Narrow("%u|%x|%X|%#x|%o|%#o|%.3d|%hd", -1, 255, 255, 255, 8, 8, 7, 70000),
              "4294967295|ff|FF|0xff|10|010|007|4464");
    EXPECT_EQ(Narrow("%ld|%#x|%#o|%.0d|", static_cast<long>(-5), 0, 0, 0), "-5|0|0||");
    EXPECT_EQ(Narrow("%f|%.2f|%8.3f|%e|%g|%G", 3.14159, 2.005, -1.5, 1.5, 1e20, 1e-5),
              "3.141590|2.00|  -1.500|1.500000e+00|1e+20|1E-05");
    EXPECT_EQ(Narrow("%.0f|%#.0f|%+.1e", 2.5, 2.0, 12345.0), "2|2.|+1.2e+04");
    EXPECT_EQ(Narrow("%p", reinterpret_cast<void*>(0x1234)), "0000000000001234");
    EXPECT_EQ(Narrow("%s|%5s|%-5s|%.2s|%S|%ls", "ab", "ab", "ab", "abcd", KTW("wide"), KTW("w")),
              "ab|   ab|ab   |ab|wide|w");
    EXPECT_EQ(Narrow("%c%c%C|%3c", 'a', 'b', KTWCHAR('c'), 'd'), "abc|  d");
    EXPECT_EQ(Narrow("%s", static_cast<const char*>(nullptr)), "(null)");
    EXPECT_EQ(Narrow("50%% %E", 1.0), "50% E");  // E is no conversion here: no argument taken
}

TEST(Format, WideConversionsMirrorTheNarrowOnes) {
    EXPECT_EQ(WideFormat(KTW("%s|%S|%hs|%ls"), KTW("w"), "n", "h", KTW("l")), KTW("w|n|h|l"));
    EXPECT_EQ(WideFormat(KTW("%c%C%hc%lc"), KTWCHAR(0x3042), 'n', 'h', KTWCHAR('l')),
              KTW("\u3042nhl"));
    EXPECT_EQ(WideFormat(KTW("%-4d|%.3f|%x"), 7, 0.5, 0xbeef), KTW("7   |0.500|beef"));
    EXPECT_EQ(WideFormat(KTW("caf%S"), "\xE9"), KTW("caf\u00e9"));
}

TEST(Format, PrintsWholeTextWhereTheFiguresFallShort) {
    const std::string big(400, 'x');
    EXPECT_EQ(Narrow("%-*d|", -40, 1), "1" + std::string(39, ' ') + "|");
    EXPECT_EQ(Narrow("%10.3s|", big.c_str()), "       xxx|");
    EXPECT_EQ(Narrow("%f", 1e300).size(), 301u + 7u);
    EXPECT_EQ(Narrow("%.40d", -5), "-" + std::string(39, '0') + "5");
}

TEST(Format, AWidthBeyondAnyBufferFailsAsAllocationDoes) {
    CXString s("kept");
    EXPECT_THROW(s.Format("%99999999999d", 1), std::bad_alloc);
    EXPECT_EQ(std::string(s), "kept");
}

// Formats and arguments drawn at random; the estimate must cover the text.
class RandomFormats : public ::testing::Test {
protected:
    std::mt19937 random{20261123};

    int Pick(int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); }

    std::string Literal() {
        static const char kChars[] = "ab %%-.,;:x=()";
        std::string text;
        for (int n = Pick(6); n > 0; --n) {
            char c = kChars[Pick(sizeof kChars - 1)];
            text += c == '%' ? "%%" : std::string(1, c);
        }
        return text;
    }

    std::string Conversion(bool& starWidth, bool& starPrecision) {
        static const char* kFlags[] = {"", "-", "+", "0", " ", "#", "-#", "+0"};
        std::string conversion = "%";
        conversion += kFlags[Pick(8)];
        starWidth = Pick(4) == 0;
        if (starWidth)
            conversion += "*";
        else if (Pick(2))
            conversion += std::to_string(Pick(40));
        starPrecision = Pick(4) == 0;
        if (starPrecision)
            conversion += ".*";
        else if (Pick(2))
            conversion += "." + std::to_string(Pick(30));
        return conversion;
    }

    template <class... Args>
    void Check(const std::string& format, Args... args) {
        NarrowEstimate estimate;
        CXString narrow;
        narrow.Format(format.c_str(), args...);
        ASSERT_LE(narrow.GetSize(), static_cast<unsigned>(estimate(format.c_str(), args...)))
            << format;

        const WideString wideFormat = WideStrings::Text(format.c_str());
        WideEstimate wideEstimate;
        CXStringW wide;
        wide.Format(wideFormat.c_str(), args...);
        ASSERT_LE(wide.GetSize(), static_cast<unsigned>(wideEstimate(wideFormat.c_str(), args...)))
            << format;
    }

    template <class Value>
    void CheckWithStars(const std::string& format, bool starWidth, bool starPrecision,
                        Value value) {
        WithStarArguments([&](auto... args) { Check(format, args...); }, starWidth, starPrecision,
                          Pick(50), Pick(20), value);
    }
};

TEST_F(RandomFormats, EstimatesAreNeverShort) {
    static const char kIntegerLetters[] = "diouxX";
    static const char kRealLetters[] = "efgG";
    static const char* kTexts[] = {"", "a", "some text",
                                   "a longer text of some forty characters.."};
    static const KTWCHAR* kWideTexts[] = {KTW(""), KTW("w"), KTW("wide text")};
    static const double kReals[] = {0.0, -1.5, 3.14159, 1e-7, 123456789.125, -9.99e99, 1e300};
    for (int round = 0; round < 3000; ++round) {
        bool starWidth = false, starPrecision = false;
        std::string format = Literal() + Conversion(starWidth, starPrecision);
        switch (Pick(6)) {
            case 0:
                format += std::string(Pick(3) ? "" : "h") + kIntegerLetters[Pick(6)] + Literal();
                CheckWithStars(format, starWidth, starPrecision, static_cast<int>(random()));
                break;
            case 1:
                format += kRealLetters[Pick(4)] + Literal();
                CheckWithStars(format, starWidth, starPrecision, kReals[Pick(7)]);
                break;
            case 2:
                format += "hs" + Literal();
                CheckWithStars(format, starWidth, starPrecision, kTexts[Pick(4)]);
                break;
            case 3:
                format += "ls" + Literal();
                CheckWithStars(format, starWidth, starPrecision, kWideTexts[Pick(3)]);
                break;
            case 4:
                format += std::string(Pick(2) ? "c" : "lc") + Literal();
                CheckWithStars(format, starWidth, starPrecision, 'a' + Pick(26));
                break;
            default:
                format += "p" + Literal();
                CheckWithStars(format, starWidth, starPrecision, static_cast<void*>(&format));
                break;
        }
    }
}

}  // namespace
}  // namespace kt::test
