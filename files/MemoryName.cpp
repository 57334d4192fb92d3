#include "files/MemoryName.h"

#include <algorithm>
#include <cstdint>

#include "kticore/files/File.h"

namespace kt {
namespace {

bool IsSeparator(KTWCHAR unit) { return unit == ',' || unit == '.'; }

// The units that _wtoi skips before a number: the runtime's wide white space,
// which is Unicode's but for the next line (U+0085).
bool IsWhiteSpace(KTWCHAR unit) {
    return (unit >= 0x09 && unit <= 0x0D) || unit == 0x20 || unit == 0xA0 || unit == 0x1680 ||
           (unit >= 0x2000 && unit <= 0x200A) || unit == 0x2028 || unit == 0x2029 ||
           unit == 0x202F || unit == 0x205F || unit == 0x3000;
}

// A number as _wtoi reads it: white space, a sign, digits, held at the limits
// of 32 bits when it is larger.
std::int32_t ReadNumber(const KTWCHAR*& text) {
    while (IsWhiteSpace(*text))
        ++text;
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+')
        ++text;
    std::int64_t value = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
        value = std::min<std::int64_t>(value * 10 + (*text - '0'), std::int64_t{1} << 31);
    value = negative ? -value : value;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, INT32_MIN, INT32_MAX));
}

}  // namespace

bool IsMemoryName(const KTWCHAR* name) {
    if (name == nullptr)
        return false;
    static const char kPrefix[] = "fmem::";
    for (int i = 0; i < kMemoryPrefixLength; ++i) {
        KTWCHAR unit = name[i];
        if (unit >= 'A' && unit <= 'Z')
            unit = static_cast<KTWCHAR>(unit - 'A' + 'a');
        if (unit != static_cast<KTWCHAR>(kPrefix[i]))
            return false;
    }
    return true;
}

MemoryBlock ParseMemoryName(const KTWCHAR* name) {
    const KTWCHAR* text = name + kMemoryPrefixLength;
    std::int32_t numbers[2] = {0, 0};
    for (std::int32_t& number : numbers) {
        while (IsSeparator(*text))
            ++text;
        number = ReadNumber(text);
        while (*text != 0 && !IsSeparator(*text))
            ++text;
    }
    const auto address = static_cast<std::intptr_t>(numbers[0]);
    // A negative size names no bytes.
    return {reinterpret_cast<const unsigned char*>(address), static_cast<DWORD>(std::max(numbers[1], 0))};
}

}  // namespace kt

int Fio_IsMemFile(const KTWCHAR* name) { return kt::IsMemoryName(name); }
