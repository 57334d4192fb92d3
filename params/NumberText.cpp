#include "params/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>

namespace kt::params {
namespace {

// The significant digits of a real in the text form.
constexpr int kRealDigits = 14;

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

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

// Whether a number that does not fit a double is too small rather than too
// large: a negative exponent, or no digit but 0 before the point. A
// hexadecimal number's exponent is the one behind `p`: `e` is a digit there.
bool IsTiny(const char* begin, const char* end, bool hexadecimal) {
    const auto isExponent = [hexadecimal](char c) {
        return c == 'p' || c == 'P' || (!hexadecimal && (c == 'e' || c == 'E'));
    };
    const char* exponent = std::find_if(begin, end, isExponent);
    if (exponent != end)
        return exponent + 1 < end && exponent[1] == '-';
    for (; begin != end && *begin != '.'; ++begin)
        if (*begin != '0')
            return false;
    return true;
}

}  // namespace

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

const char* ReadReal(const char* text, double& value) {
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
    const std::from_chars_result result =
        hexadecimal ? std::from_chars(at + 2, end, value, std::chars_format::hex)
                    : std::from_chars(at, end, value, std::chars_format::general);
    if (result.ec == std::errc::invalid_argument)
        return nullptr;
    // strtod gives 0 and infinity there.
    if (result.ec == std::errc::result_out_of_range)
        value = IsTiny(at, result.ptr, hexadecimal) ? 0.0 : std::numeric_limits<double>::infinity();
    if (negative)
        value = -value;
    return result.ptr;
}

void AppendReal(std::string& out, double value) {
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, kRealDigits);
    out.append(buffer, result.ptr);
}

void AppendUnsigned(std::string& out, std::uint32_t value) {
    char buffer[16];
    out.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

void AppendSigned(std::string& out, std::int32_t value) {
    char buffer[16];
    out.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

}  // namespace kt::params
