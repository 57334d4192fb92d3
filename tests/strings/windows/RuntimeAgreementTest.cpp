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
            const unsigned code = s.GetAt(random() % s.GetLength());
            const unsigned char* first = _mbschr(Bytes(text), code);
            const unsigned char* last = _mbsrchr(Bytes(text), code);
            ASSERT_EQ(
                s.GetData(s.Find(static_cast<KTWCHAR>(code))),
                reinterpret_cast<const char*>(first) - text.c_str() + static_cast<const char*>(s));
            ASSERT_EQ(
                s.GetData(s.FindRev(static_cast<KTWCHAR>(code))),
                reinterpret_cast<const char*>(last) - text.c_str() + static_cast<const char*>(s));
            CXString upper(s);
            upper.Upper();
            std::string runtimeUpper = text;
            _mbsupr(reinterpret_cast<unsigned char*>(&runtimeUpper[0]));
            ASSERT_EQ(std::string(upper), runtimeUpper) << codePage << " " << round;
        }
    }
}

}  // namespace
}  // namespace kt::test
