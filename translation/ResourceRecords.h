// The record that stands in for a module's resource: FindResource hands its
// address to the caller in place of the real handle, and LoadResource serves
// the rewritten block from it. Records and their blocks are made once and
// live until the library is unloaded.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kticore/core/List.h"
#include "kticore/platform/Platform.h"

namespace kt {

// Tells a record from a real resource handle.
constexpr DWORD kResourceRecordMarker = 0xFFFFFFFF;
constexpr size_t kResourceKeyCapacity = 128;

// The resource types that get a record.
constexpr std::uintptr_t kResourceTypeMenu = 4;
constexpr std::uintptr_t kResourceTypeDialog = 5;
constexpr std::uintptr_t kResourceTypeString = 6;

}  // namespace kt

// A block of LocalAlloc; the fields in this order, behind the links of the
// circular list of every record of the process.
struct SuppResource : KT_LISTITEM {
    DWORD marker;
    std::uintptr_t type;
    HMODULE module;
    HRSRC real;
    HGLOBAL realData;  // 0 until loaded
    void* translated;  // 0 until made
    DWORD size;        // of what LoadResource serves
    DWORD keyHash;     // Supp_HashKey(key); 0 without a key
    // The resource key prefix, "<module file>#<kind>#<name or id>"; empty
    // without a name, or when the key would not fit.
    char key[kt::kResourceKeyCapacity];
};

namespace kt {

// A handle is a record when it is not null and carries the marker. A real
// handle is read where a record's marker would stand, behind its own few
// bytes, which may be the end of the module's mapping: that read is guarded.
KTCORE_API bool IsResourceRecord(const void* handle);

}  // namespace kt

// The record for `real`, made at the first call for the resource of
// `module`; `real` itself for a null handle, another type than a menu, a
// dialog or a string block, or when no record can be had. `name` is narrow
// or wide text, or a number in a pointer.
KTCORE_API SuppResource* Supp_WrapResource(HRSRC real, HMODULE module, const char* name, const void* type);
KTCORE_API SuppResource* Supp_WrapResource(HRSRC real, HMODULE module, const KTWCHAR* name, const void* type);

// The block to serve for a record: the rewritten dialog or string block, made
// at the first call and served again on every later one. A real handle goes
// to the real LoadResource; a failing real load gives 0.
KTCORE_API void* Supp_LoadResource(HMODULE module, SuppResource* record);

namespace kt {

// The size of the block that the record serves, serving it first when that
// has not happened yet: a module that asks the size before it loads the
// block gets the size of the block it will get.
KTCORE_API DWORD ServedResourceSize(HMODULE module, SuppResource* record);

// Forgets the records of a module that is unloaded: another module may come
// to its address with handles of the same values. The records themselves
// stay, since a caller may still hold one.
KTCORE_API void ForgetModuleResources(HMODULE module);

}  // namespace kt
