// On valid double-byte text the string classes count and find as the
// platform's C runtime does; they part only where the runtime reads past the
// end of text cut inside a character. Case follows the runtime's locale.
#include <gtest/gtest.h>

#include <locale.h>
#include <mbstring.h>

#include <random>
#include <string>

#include "kticore/strings/XString.h"
#include "kticore/strings/XStringW.h"
#include "tests/support/StringInspection.h"
#include "tests/support/WideText.h"

namespace kt::test {
namespace {

const unsigned char* Bytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.c_str());
}

// Text of ASCII, single high bytes and whole double-byte characters.
std::string RandomText(std::mt19937& random, int codePage) {
    std::string text;
    for (int n = random() % 12; n > 0; --n) {
        const unsigned kind = random() % 3;
        if (kind == 0) {
            text += static_cast<char>(' ' + random() % 95);
        } else {
            unsigned char lead;
            do
                lead = static_cast<unsigned char>(0x80 + random() % 0x80);
            while ((_ismbblead(lead) != 0) != (kind == 2));
            text += static_cast<char>(lead);
            if (kind == 2) {
                unsigned char trail;
                do
                    trail = static_cast<unsigned char>(0x40 + random() % 0xBD);
                while (trail == 0x7F || (codePage != 932 && trail < 0x41));
                text += static_cast<char>(trail);
            }
        }
    }
    return text;
}

TEST(RuntimeAgreement, CountingAndSearchingMatchTheRuntime) {
    std::mt19937 random(932);
    for (int codePage : {932, 936, 949, 950}) {
        ScopedCodePage page(codePage);
        ASSERT_TRUE(page.ok);
        for (int round = 0; round < 400; ++round) {
            const std::string text = RandomText(random, codePage);
            const CXString s(text.c_str());
            ASSERT_EQ(s.GetLength(), _mbslen(Bytes(text))) << codePage << " " << round;
            const unsigned n = random() % 14;
            ASSERT_EQ(s.GetSize(n), _mbsnbcnt(Bytes(text), n)) << codePage << " " << round;
            if (s.GetLength() == 0)
                continue;
            // Offsets into the string's text, from the runtime's answers.
            auto at = [&](const unsigned char* found) {
                return found != nullptr ? static_cast<const char*>(s) + (found - Bytes(text))
                                        : nullptr;
            };
            auto position = [&](int found) {
                return found >= 0 ? s.GetData(static_cast<unsigned>(found)) : nullptr;
            };
            const unsigned start = random() % s.GetLength();
            const KTWCHAR code = s.GetAt(start);
            const CXString tail(s.GetData(start));
            CXString needle;
            tail.Extract(0, 1 + static_cast<int>(random() % 3), needle);
            EXPECT_EQ(position(s.Find(code)), at(_mbschr(Bytes(text), code)))
                << codePage << " " << round;
            EXPECT_EQ(position(s.FindRev(code)), at(_mbsrchr(Bytes(text), code)))
                << codePage << " " << round;
            EXPECT_EQ(position(s.Find(needle)),
                      at(_mbsstr(Bytes(text), Bytes(std::string(needle)))));
            EXPECT_EQ(position(s.FindOnOf(needle)),
                      at(_mbspbrk(Bytes(text), Bytes(std::string(needle)))));
        }
    }
}

// A Western European locale, code page 1252, for the life of the object.
class ScopedWesternLocale {
public:
    ScopedWesternLocale() : before_(setlocale(LC_ALL, nullptr)) {
        ok = setlocale(LC_ALL, "English_United States.1252") != nullptr;
    }
    ScopedWesternLocale(const ScopedWesternLocale&) = delete;
    ScopedWesternLocale& operator=(const ScopedWesternLocale&) = delete;
    ~ScopedWesternLocale() { setlocale(LC_ALL, before_.c_str()); }

    bool ok;

private:
    std::string before_;
};

// A host that sets a locale gives more letters case; the string classes
// follow the runtime there too.
TEST(RuntimeAgreement, CaseFollowsTheLocaleTheProcessSets) {
    ScopedWesternLocale locale;
    ASSERT_TRUE(locale.ok);
    CXStringW wide(L"\u00e9\u03b1\u0436z");
    wide.Upper();
    EXPECT_EQ(Wide(wide), L"\u00c9\u0391\u0416Z");
    EXPECT_EQ(CXStringW(L"\u00e9").CompareI(L"\u00c9"), 0);

    CXString narrow("\xE9z");
    narrow.Upper();
    EXPECT_EQ(std::string(narrow), "\xC9Z");
    EXPECT_EQ(CXString("\xE9").CompareI("\xC9"), 0);
}

}  // namespace
}  // namespace kt::test
