// What differs between the back ends of IParam, in one place. The interface is
// one; these are the differences a caller can see, and each back end asks its
// row here instead of deciding for itself.
#pragma once

#include "kticore/values/Variant.h"

namespace kt::params {

// What GetValue does with the caller's variant when the value is missing.
enum class MissingValue {
    kUntouched,                    // left as it was
    kCleared,                      // cleared
    kClearedUnlessSectionMissing,  // cleared, but left as it was when a section of the path is missing
};

// How names compare and in which order the enumerations list them.
enum class NameOrder {
    kCreation,     // case folded; the first spelling is the one listed
    kFile,         // the profile file's order and case rules
    kRegistry,     // the registry's index order and case rules
    kStorage,      // the storage's element order and case rules
};

struct BackEndRules {
    const char* name;
    NameOrder order;
    // The empty value name stands for "@"; otherwise it is passed on as the
    // unnamed value of the place.
    bool emptyNameIsDefault;
    // A `\` in a value path names sections; otherwise it is part of the name.
    bool valuePathSplits;
    MissingValue missingValue;
    // Bit k set: SetValue stores kind k. Other kinds are dropped without a word.
    unsigned storedKinds;
    // Clear leaves the sub-sections in place, emptied, instead of removing them.
    bool clearKeepsSections;
};

constexpr unsigned KindBit(unsigned kind) { return 1u << kind; }
constexpr unsigned KindsUpTo(unsigned last) { return (KindBit(last) << 1) - 1; }

inline constexpr BackEndRules kMemoryTree{
    "memory", NameOrder::kCreation, true, true, MissingValue::kUntouched, KindsUpTo(KTVT_WSTR), false};
inline constexpr BackEndRules kProfileFile{
    "profile file", NameOrder::kFile, true, true, MissingValue::kClearedUnlessSectionMissing,
    KindsUpTo(KTVT_BLOB), false};
inline constexpr BackEndRules kRegistry{
    "registry", NameOrder::kRegistry, false, false, MissingValue::kCleared,
    KindsUpTo(KTVT_BLOB) | KindBit(KTVT_WSTR), true};
// What the stored form of a variant can write; the storage keeps all of it.
inline constexpr BackEndRules kStorage{
    "storage", NameOrder::kStorage, true, true, MissingValue::kClearedUnlessSectionMissing,
    KindsUpTo(KTVT_WSTR), false};

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
