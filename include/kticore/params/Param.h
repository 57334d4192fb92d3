// Parameter trees: named sections holding named values of any variant kind,
// behind one interface whatever keeps them (memory, a private profile file,
// the registry, a compound storage). A path is section names joined by `\`;
// all names are narrow text. The default value of a section is named "@",
// and the empty value name stands for it.
#pragma once

#include "kticore/core/Enum.h"
#include "kticore/core/Unknown.h"
#include "kticore/values/Variant.h"

struct IParam : IKTUnknown {
    // Makes the section at `path`; one that exists already is emptied. One
    // reference for the caller.
    virtual IParam* CreateSection(const char* path) = 0;
    // The section at `path` with one reference, or null; with `create` not 0
    // a missing one is made.
    virtual IParam* GetSection(const char* path, int create) = 0;
    // Empties the section at `path` and takes it out of its parent.
    virtual void DeleteSection(const char* path) = 0;
    virtual void DeleteAllSections() = 0;
    // Names of the direct sub-sections, one reference for the caller.
    virtual CTEnum<const char*>* EnumSections() = 0;
    // 1 found, 0 not. The part of `path` up to its last `\` names a section
    // below this one, the rest the value.
    virtual int GetValue(const char* path, tagKTVARIANT* value) = 0;
    // Writes a value, by the same path rule, making missing sections.
    virtual void SetValue(const char* path, const tagKTVARIANT* value) = 0;
    // Removes a value of this very section: `name` is not a path.
    virtual void DeleteValue(const char* name) = 0;
    virtual void DeleteAllValues() = 0;
    virtual CTEnum<const char*>* EnumValues() = 0;
    // Removes all sections and all values of this section.
    virtual void Clear() = 0;

protected:
    ~IParam() = default;
};

// Enters an object as the answer to a QueryInterface of the object that
// bears this interface. Borne by every parameter back end.
struct IRegisterIface : IKTUnknown {
    // Replaces what was entered for `type`; a null `object` removes the
    // entry (1 if there was one, else 0). With `addRef` not 0 the entry holds
    // a reference on `object` for as long as it stands.
    virtual int RegisterInterface(IKTUnknown* object, const type_info& type, int addRef) = 0;

protected:
    ~IRegisterIface() = default;
};

// A new empty tree in memory, one reference for the caller. It answers
// QueryInterface for IRegisterIface and for what is registered on it, not for
// IParam itself.
KTCORE_API IParam* new_MemParam();
