// What the parameter tests share: trees held by the test, the names an
// enumerator gives, and values read back.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kticore/params/Param.h"
#include "tests/support/Counted.h"

namespace kt::test {

using Names = std::vector<std::string>;

inline Ref<IParam> NewTree() { return Ref<IParam>(new_MemParam()); }

// Takes over the enumerator's reference.
inline Names NamesOf(CTEnum<const char*>* names) {
    Names result;
    const char* name = nullptr;
    while (names != nullptr && names->Next(1, &name, nullptr))
        result.push_back(name);
    if (names != nullptr)
        names->Release();
    return result;
}

inline Names ValueNames(IParam* param) { return NamesOf(param->EnumValues()); }
inline Names SectionNames(IParam* param) { return NamesOf(param->EnumSections()); }

inline void Set(IParam* param, const char* path, const CKTVariant& value) { param->SetValue(path, &value); }

// The value at `path`; an empty variant of kind 0xFFFF when it is missing.
inline CKTVariant ValueAt(IParam* param, const char* path) {
    CKTVariant value;
    if (!param->GetValue(path, &value))
        value.vt = 0xFFFF;
    return value;
}

}  // namespace kt::test
