#include "strings/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

namespace kt::number {
namespace {

template <class Unit>
bool IsBlank(Unit c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

int DigitValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'Z')
        return c - 'A' + 10;
    return 36;
}

bool IsHexDigit(char c) { return DigitValue(c) < 16; }

const char* SkipBlanksAndSign(const char* text, bool& negative) {
    while (IsBlank(*text))
        ++text;
    negative = *text == '-';
    if (*text == '-' || *text == '+')
        ++text;
    return text;
}

// Whether a number that does not fit is too small rather than too large: its
// order of magnitude, from the digits before the point (or the zeros behind
// it) and the exponent, is below 0. Out of range, a number is far from 1, so
// a rough order decides. A hexadecimal digit counts 4 of the binary exponent
// behind `p`, and `e` is a digit there.
bool IsTiny(const char* begin, const char* end, bool hexadecimal) {
    const auto isExponent = [hexadecimal](char c) {
        return c == 'p' || c == 'P' || (!hexadecimal && (c == 'e' || c == 'E'));
    };
    const long long perDigit = hexadecimal ? 4 : 1;
    constexpr long long kFarBeyondAnyRange = 1000000;
    const char* exponent = std::find_if(begin, end, isExponent);
    long long order = 0;
    const char* p = begin;
    while (p != exponent && *p == '0')
        ++p;
    if (p != exponent && *p != '.') {
        for (; p != exponent && *p != '.'; ++p)
            order += perDigit;
    } else if (p != exponent) {
        for (++p; p != exponent && *p == '0'; ++p)
            order -= perDigit;
    }
    if (exponent != end) {
        bool negative = false;
        const char* digit = SkipBlanksAndSign(exponent + 1, negative);
        long long shift = 0;
        for (; digit != end && *digit >= '0' && *digit <= '9'; ++digit)
            shift = std::min(shift * 10 + (*digit - '0'), kFarBeyondAnyRange);
        order += negative ? -shift : shift;
    }
    return order < 0;
}

template <class Real>
const char* ReadRealAs(const char* text, Real& value) {
    bool negative = false;
    const char* at = SkipBlanksAndSign(text, negative);
    const char* end = at;
    while (*end != 0)
        ++end;
    // One sign only: from_chars would take a second minus.
    if (*at == '-' || *at == '+')
        return nullptr;
    // "0x" counts only before a hexadecimal digit, else the 0 alone is read.
    const bool hexadecimal = at[0] == '0' && (at[1] == 'x' || at[1] == 'X') &&
                             (IsHexDigit(at[2]) || (at[2] == '.' && IsHexDigit(at[3])));
    const char* digits = hexadecimal ? at + 2 : at;
    const std::from_chars_result result = std::from_chars(
        digits, end, value, hexadecimal ? std::chars_format::hex : std::chars_format::general);
    if (result.ec == std::errc::invalid_argument)
        return nullptr;
    // strtod gives 0 and infinity there.
    if (result.ec == std::errc::result_out_of_range)
        value = IsTiny(digits, result.ptr, hexadecimal) ? Real{0} : std::numeric_limits<Real>::infinity();
    if (negative)
        value = -value;
    return result.ptr;
}

bool StartsWithFolded(const char* text, const char* word) {
    for (; *word != 0; ++text, ++word) {
        if ((*text | 0x20) != *word)
            return false;
    }
    return true;
}

// What the scanner has taken in and cannot give back, one character of
// push-back being all it has: it fails where strtod would read less.
bool IsBrokenOff(const char* text) {
    bool negative = false;
    const char* at = SkipBlanksAndSign(text, negative);
    if (at[0] == '0' && (at[1] == 'x' || at[1] == 'X'))
        return !IsHexDigit(at[2]) && at[2] != '.';
    if (StartsWithFolded(at, "infi"))
        return !StartsWithFolded(at, "infinity");
    return false;
}

template <class Real>
const char* ScanAscii(const char* text, Real& value) {
    return IsBrokenOff(text) ? nullptr : ReadRealAs(text, value);
}

// A real is written in ASCII with a '.' for its point: the reader is given
// the units of the text up to the first that is not ASCII, with the point of
// the caller turned into '.' and a '.' into a unit that ends the number.
template <class Unit>
std::string AsciiWithDotPoint(const Unit* text, char decimalPoint) {
    constexpr char kEndsTheNumber = '\x01';
    std::string ascii;
    for (const Unit* p = text; *p != 0 && static_cast<std::uint32_t>(*p) < 0x80; ++p) {
        const char c = static_cast<char>(*p);
        ascii += c == decimalPoint ? '.' : c == '.' ? kEndsTheNumber : c;
    }
    return ascii;
}

}  // namespace

template <class Unit, class Real>
const Unit* ScanReal(const Unit* text, Real& value, char decimalPoint) {
    if constexpr (std::is_same_v<Unit, char>) {
        if (decimalPoint == '.')
            return ScanAscii(text, value);
    }
    const std::string ascii = AsciiWithDotPoint(text, decimalPoint);
    const char* end = ScanAscii(ascii.c_str(), value);
    return end != nullptr ? text + (end - ascii.c_str()) : nullptr;
}

template const char* ScanReal(const char*, double&, char);
template const char* ScanReal(const char*, float&, char);
template const KTWCHAR* ScanReal(const KTWCHAR*, double&, char);
template const KTWCHAR* ScanReal(const KTWCHAR*, float&, char);

template <class Unit>
const Unit* ScanDecimal(const Unit* text, std::uint32_t& value) {
    while (IsBlank(*text))
        ++text;
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+')
        ++text;
    const Unit* digits = text;
    std::uint32_t number = 0;
    for (std::uint32_t digit; (digit = static_cast<std::uint32_t>(*text) - '0') <= 9; ++text)
        number = number * 10u + digit;
    if (text == digits)
        return nullptr;
    value = negative ? 0u - number : number;
    return text;
}

template const char* ScanDecimal(const char*, std::uint32_t&);
template const KTWCHAR* ScanDecimal(const KTWCHAR*, std::uint32_t&);

const char* ReadInteger(const char* text, int base, bool isSigned, std::uint32_t& value) {
    bool negative = false;
    const char* at = SkipBlanksAndSign(text, negative);
    if (base == 16 && at[0] == '0' && (at[1] == 'x' || at[1] == 'X') && IsHexDigit(at[2]))
        at += 2;
    const char* digits = at;
    std::uint64_t magnitude = 0;
    constexpr std::uint64_t kCap = std::uint64_t{1} << 33;  // beyond every 32-bit limit
    for (; DigitValue(*at) < base; ++at)
        magnitude = std::min(magnitude * static_cast<unsigned>(base) + DigitValue(*at), kCap);
    if (at == digits)
        return nullptr;
    if (isSigned) {
        const std::int64_t signedValue = negative ? -static_cast<std::int64_t>(magnitude)
                                                  : static_cast<std::int64_t>(magnitude);
        const std::int64_t held = std::clamp<std::int64_t>(signedValue, INT32_MIN, INT32_MAX);
        value = static_cast<std::uint32_t>(static_cast<std::int32_t>(held));
    } else if (magnitude > UINT32_MAX) {
        value = UINT32_MAX;
    } else {
        // strtoul negates an unsigned result for a minus sign.
        value = negative ? 0u - static_cast<std::uint32_t>(magnitude) : static_cast<std::uint32_t>(magnitude);
    }
    return at;
}

const char* ReadReal(const char* text, double& value) { return ReadRealAs(text, value); }

char* WriteReal(char* out, double value, int significantDigits) {
    return std::to_chars(out, out + kLongestNumber, value, std::chars_format::general, significantDigits).ptr;
}

char* WriteUnsigned(char* out, std::uint32_t value) {
    return std::to_chars(out, out + kLongestNumber, value).ptr;
}

char* WriteSigned(char* out, std::int32_t value) {
    return std::to_chars(out, out + kLongestNumber, value).ptr;
}

void AppendReal(std::string& out, double value, int significantDigits) {
    char buffer[kLongestNumber];
    out.append(buffer, WriteReal(buffer, value, significantDigits));
}

void AppendUnsigned(std::string& out, std::uint32_t value) {
    char buffer[kLongestNumber];
    out.append(buffer, WriteUnsigned(buffer, value));
}

void AppendSigned(std::string& out, std::int32_t value) {
    char buffer[kLongestNumber];
    out.append(buffer, WriteSigned(buffer, value));
}

}  // namespace kt::number
