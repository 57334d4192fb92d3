// The hash of a wide text as the dictionary hashes its keys: h * 257 + unit
// over the text, in 32 bits, and the hash of two texts joined from theirs.
#include "kticore/core/Map.h"
#include "translation/Lookup.h"

namespace {

constexpr DWORD kHashFactor = 257;

// 257 to the powers below the longest key: a front's hash is shifted by 257
// to the power of the length of what follows it.
struct HashShifts {
    DWORD power[kKeyedCapacityW];
    constexpr HashShifts() : power() {
        power[0] = 1;
        for (unsigned n = 1; n < kKeyedCapacityW; ++n)
            power[n] = power[n - 1] * kHashFactor;
    }
};
constexpr HashShifts kHashShifts;

DWORD HashShift(size_t length) {
    if (length < kKeyedCapacityW)
        return kHashShifts.power[length];
    DWORD shift = 1;
    for (DWORD base = kHashFactor, exponent = static_cast<DWORD>(length); exponent != 0; exponent >>= 1, base *= base)
        if (exponent & 1)
            shift *= base;
    return shift;
}

}  // namespace

kt::HashedText kt::HashText(const KTWCHAR* text) {
    HashedText hashed;
    hashed.hash = CTMapKey<const KTWCHAR*>::Hash(text, hashed.length);
    return hashed;
}

kt::HashedText kt::Joined(HashedText front, HashedText back) {
    return {front.hash * HashShift(back.length) + back.hash, front.length + back.length};
}
