// On valid double-byte text the string classes count, find and change case
// as the platform's C runtime does; they part only where the runtime reads
// past the end of text cut inside a character.
#include <gtest/gtest.h>

#include <mbstring.h>

#include <random>
#include <string>

#include "kticore/strings/XString.h"
#include "tests/support/StringInspection.h"

namespace kt::test {
namespace {

const unsigned char* Bytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.c_str());
}

// Rows of 932 that repeat characters of other rows (NEC and IBM
// extensions): the runtime's case change rewrites them into the other row
// even when no case changes, which the string classes do not.
bool IsDuplicateRow(int codePage, unsigned char lead) {
    return codePage == 932 && (lead == 0x87 || lead == 0xED || lead == 0xEE || lead >= 0xFA);
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
            while (kind == 1 ? _ismbblead(lead) != 0
                             : _ismbblead(lead) == 0 || IsDuplicateRow(codePage, lead));
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

TEST(RuntimeAgreement, CountingSearchingAndCaseMatchTheRuntime) {
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

            CXString upper(s), lower(s);
            upper.Upper();
            lower.Lower();
            std::string runtimeUpper = text, runtimeLower = text;
            _mbsupr(reinterpret_cast<unsigned char*>(&runtimeUpper[0]));
            _mbslwr(reinterpret_cast<unsigned char*>(&runtimeLower[0]));
            EXPECT_EQ(std::string(upper), runtimeUpper) << codePage << " " << round;
            EXPECT_EQ(std::string(lower), runtimeLower) << codePage << " " << round;
            EXPECT_EQ(upper.CompareI(lower), 0) << codePage << " " << round;
            EXPECT_EQ(_mbsicmp(Bytes(std::string(upper)), Bytes(std::string(lower))), 0);
        }
    }
}

}  // namespace
}  // namespace kt::test
