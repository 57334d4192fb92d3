#include "files/MemoryName.h"

#include <cstdint>

#include "kticore/files/File.h"

namespace kt {
namespace {

bool IsSeparator(KTWCHAR unit) { return unit == ',' || unit == '.'; }

// A number as _wtoi reads it: blanks, a sign, digits, in 32 bits.
std::int32_t ReadNumber(const KTWCHAR*& text) {
    while (*text == ' ' || *text == '\t')
        ++text;
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+')
        ++text;
    std::uint32_t value = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
        value = value * 10 + static_cast<std::uint32_t>(*text - '0');
    return static_cast<std::int32_t>(negative ? 0u - value : value);
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
    return {reinterpret_cast<const unsigned char*>(address), static_cast<DWORD>(numbers[1])};
}

}  // namespace kt

int Fio_IsMemFile(const KTWCHAR* name) { return kt::IsMemoryName(name); }
