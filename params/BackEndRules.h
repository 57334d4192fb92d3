// What differs between the back ends of IParam, in one place. The interface is
// one; these are the differences a caller can see, and each back end asks its
// row here instead of deciding for itself.
#pragma once

#include "kticore/values/Variant.h"

namespace kt::params {

struct BackEndRules {
    // The empty value name stands for "@"; otherwise it is passed on as the
    // unnamed value of the place.
    bool emptyNameIsDefault;
    // A `\` in a value path names sections; otherwise it is part of the name.
    bool valuePathSplits;
    // Bit k set: SetValue stores kind k. Other kinds are dropped without a word.
    unsigned storedKinds;
};

constexpr unsigned KindBit(unsigned kind) { return 1u << kind; }
constexpr unsigned KindsUpTo(unsigned last) { return (KindBit(last) << 1) - 1; }

inline constexpr BackEndRules kMemoryTree{true, true, KindsUpTo(KTVT_WSTR)};
inline constexpr BackEndRules kProfileFile{true, true, KindsUpTo(KTVT_BLOB)};
inline constexpr BackEndRules kRegistry{false, false, KindsUpTo(KTVT_BLOB) | KindBit(KTVT_WSTR)};
// What the stored form of a variant can write; the storage keeps all of it.
inline constexpr BackEndRules kStorage{true, true, KindsUpTo(KTVT_WSTR)};

// Whether a back end keeps a value of kind `kind` at all.
constexpr bool Stores(const BackEndRules& rules, unsigned kind) {
    return kind <= KTVT_WSTR && (rules.storedKinds & KindBit(kind)) != 0;
}

// The value name a back end uses for `name` (which may be null).
inline const char* ValueName(const BackEndRules& rules, const char* name) {
    if (rules.emptyNameIsDefault && (name == nullptr || *name == 0))
        return "@";
    return name;
}

}  // namespace kt::params
