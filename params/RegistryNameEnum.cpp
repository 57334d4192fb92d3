#include "params/RegistryNameEnum.h"

#include <algorithm>

#include "platform/Registry.h"

namespace kt::params {
namespace {

// Bytes of the longest name of each listing, terminator included: a key name
// holds 255 characters, a value name 16383, each of up to two bytes in a
// double-byte code page.
constexpr DWORD kKeyNameBytes = 513;
constexpr DWORD kValueNameBytes = 2 * 16383 + 1;

// The array grows by an eighth of its count, within these bounds.
constexpr size_t kLeastGrowth = 4;
constexpr size_t kMostGrowth = 1024;

}  // namespace

_CTValEnum::_CTValEnum(HKEY key, Listing listing) {
    const bool subKeys = listing == Listing::kSubKeys;
    std::vector<char> name(subKeys ? kKeyNameBytes : kValueNameBytes);
    for (DWORD index = 0;; ++index) {
        const DWORD capacity = static_cast<DWORD>(name.size());
        const LONG status = subKeys ? sys::RegistryKeyName(key, index, name.data(), capacity)
                                    : sys::RegistryValueName(key, index, name.data(), capacity);
        if (status != ERROR_SUCCESS)
            break;
        Append(name.data());
    }
}

void _CTValEnum::Append(const char* name) {
    if (names.size() == names.capacity())
        names.reserve(names.size() + std::clamp(names.size() / 8, kLeastGrowth, kMostGrowth));
    names.emplace_back(name);
    count = static_cast<ULONG>(names.size());
}

int _CTValEnum::Next(ULONG wanted, const char** items, ULONG* fetched) {
    if (position >= count)
        return 0;
    ULONG stored = 0;
    for (; stored < wanted && position < count; ++stored)
        items[stored] = names[position++];
    if (fetched != nullptr)
        *fetched = stored;
    return 1;
}

// Past the end is the end: a huge count must not wrap round to the start.
int _CTValEnum::Skip(ULONG skipped) {
    position = skipped < count - position ? position + skipped : count;
    return 1;
}

}  // namespace kt::params
