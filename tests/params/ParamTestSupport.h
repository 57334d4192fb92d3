// What the parameter tests share: trees held by the test, the names an
// enumerator gives, values read back, and the code of a failure.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "kticore/core/Exception.h"
#include "kticore/params/Param.h"
#include "tests/support/Counted.h"

namespace kt::test {

using Names = std::vector<std::string>;

// The kind ValueAt gives a value that is missing.
constexpr unsigned short kMissing = 0xFFFF;

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

// The value at `path`; an empty variant of kind kMissing when it is missing.
inline CKTVariant ValueAt(IParam* param, const char* path) {
    CKTVariant value;
    if (!param->GetValue(path, &value))
        value.vt = kMissing;
    return value;
}

// The code of the failure `action` throws; XE_NONE when it throws none.
inline DWORD FailureOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const CXException& failure) {
        return failure.code;
    }
    return XE_NONE;
}

}  // namespace kt::test
