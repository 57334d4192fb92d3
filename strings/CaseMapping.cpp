// Case pairs by range. Each range lists upper-case units whose lower case is
// a fixed distance away; alternating ranges pair each even unit with the odd
// one behind it (or each odd with the even one).
#include "strings/CaseMapping.h"

namespace kt::text {

namespace {

struct CaseRange {
    unsigned short first;  // upper case
    unsigned short last;
    short toLower;  // distance to the lower case; 1 in alternating ranges
    bool alternating;
    bool evenIsUpper;  // in alternating ranges: which of a pair is upper case
};

// clang-format off
constexpr CaseRange kCaseRanges[] = {
    {0x0041, 0x005A, 0x20, false, false},  // Basic Latin
    {0x00C0, 0x00D6, 0x20, false, false},  // Latin-1 Supplement
    {0x00D8, 0x00DE, 0x20, false, false},
    {0x0100, 0x012F, 1, true, true},       // Latin Extended-A
    {0x0132, 0x0137, 1, true, true},
    {0x0139, 0x0148, 1, true, false},
    {0x014A, 0x0177, 1, true, true},
    {0x0179, 0x017E, 1, true, false},
    {0x0391, 0x03A1, 0x20, false, false},  // Greek
    {0x03A3, 0x03AB, 0x20, false, false},
    {0x0400, 0x040F, 0x50, false, false},  // Cyrillic
    {0x0410, 0x042F, 0x20, false, false},
    {0x0460, 0x0481, 1, true, true},
    {0x048A, 0x04BF, 1, true, true},
    {0x04D0, 0x052F, 1, true, true},
    {0x2160, 0x216F, 0x10, false, false},  // Roman numerals
    {0x24B6, 0x24CF, 0x1A, false, false},  // circled Latin
    {0xFF21, 0xFF3A, 0x20, false, false},  // full-width Latin
};
// clang-format on

// Pairs that fit no range.
constexpr unsigned short kSingles[][2] = {{0x0178, 0x00FF}};

bool InAlternatingPair(const CaseRange& range, unsigned unit, bool upper) {
    bool even = unit % 2 == 0;
    return even == (range.evenIsUpper == upper);
}

}  // namespace

KTWCHAR ToLowerUnit(KTWCHAR unit) {
    for (const CaseRange& range : kCaseRanges) {
        if (unit < range.first || unit > range.last)
            continue;
        if (!range.alternating)
            return static_cast<KTWCHAR>(unit + range.toLower);
        return InAlternatingPair(range, unit, true) ? static_cast<KTWCHAR>(unit + 1) : unit;
    }
    for (const auto& pair : kSingles)
        if (unit == pair[0])
            return pair[1];
    return unit;
}

KTWCHAR ToUpperUnit(KTWCHAR unit) {
    for (const CaseRange& range : kCaseRanges) {
        if (range.alternating) {
            if (unit >= range.first && unit <= range.last && InAlternatingPair(range, unit, false))
                return static_cast<KTWCHAR>(unit - 1);
        } else if (unit >= range.first + range.toLower && unit <= range.last + range.toLower) {
            return static_cast<KTWCHAR>(unit - range.toLower);
        }
    }
    for (const auto& pair : kSingles)
        if (unit == pair[1])
            return pair[0];
    return unit;
}

bool IsSpaceUnit(KTWCHAR unit) {
    if (unit <= 0xFF)
        return unit == 0x20 || (unit >= 0x09 && unit <= 0x0D) || unit == 0xA0;
    return unit == 0x1680 || (unit >= 0x2000 && unit <= 0x200A) || unit == 0x2028 ||
           unit == 0x2029 || unit == 0x202F || unit == 0x205F || unit == 0x3000;
}

}  // namespace kt::text
