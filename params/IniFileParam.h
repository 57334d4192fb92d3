// CIniFileParam: the parameter back end over a private profile file. An
// object is only a name for a place in the file, the file's name and the full
// name of its section, and can outlive what stands there. Every section that
// has an object holds the key "@" (its default value): with the text "e", an
// empty variant, it keeps alive a section that has no other key.
#pragma once

#include <string>

#include "params/RegisteredInterfaces.h"

namespace kt::params {

class CIniFileParam final : public IParam, public IRegisterIface {
public:
    // The section of the full name `section`: the root for a null `parent`.
    // Writes its marker key when the file lacks it and the section can hold
    // values of its own (see HoldsOwnValues).
    CIniFileParam(const char* file, const std::string& section, IParam* parent);
    ~CIniFileParam();
    CIniFileParam(const CIniFileParam&) = delete;
    CIniFileParam& operator=(const CIniFileParam&) = delete;

    ULONG AddRef() override { return ++refCount; }
    ULONG Release() override;
    int QueryInterface(const type_info& type, void** out) override;

    int RegisterInterface(IKTUnknown* object, const type_info& type, int addRef) override;

    IParam* CreateSection(const char* path) override;
    IParam* GetSection(const char* path, int create) override;
    void DeleteSection(const char* path) override;
    void DeleteAllSections() override;
    CTEnum<const char*>* EnumSections() override { return EnumSectionsImpl(); }
    int GetValue(const char* path, tagKTVARIANT* value) override;
    void SetValue(const char* path, const tagKTVARIANT* value) override;
    void DeleteValue(const char* name) override;
    void DeleteAllValues() override;
    CTEnum<const char*>* EnumValues() override;
    void Clear() override;

    virtual CTEnum<const char*>* EnumSectionsImpl();
    // Takes a reference on the new parent and drops the old one's.
    virtual void SetParent(IParam* parent);
    // The parent with one reference for the caller, or null.
    virtual IParam* GetParent();

private:
    // False for a section whose name the file would take for another's (it
    // ends in a blank, or it is the root's child of no name, "\" like the
    // root itself), or cannot hold (a line end, 512 bytes or more): such a
    // section drops its own values without a word, while the sections below
    // it may have names of their own.
    bool HoldsOwnValues() const;
    // A new object on the section `path` below this one, which it writes
    // when the file lacks it.
    IParam* OpenBelow(const char* path);
    // The full name of the section `path` below this one.
    std::string SectionBelow(const char* path) const;
    // Every section name of the file, as a block of zero-terminated names
    // that ends with an empty one.
    std::string AllSectionNames() const;
    // Removes from the file every section below the full name `name`, and
    // with `itself` that section too, unless its name is another's.
    void RemoveSections(const std::string& name, bool nameIsRoot, bool itself) const;

    CRegisteredInterfaces registered;
    ULONG refCount = 1;
    IParam* parent = nullptr;
    std::string file;
    std::string section;
    int sectionLength;
    int isRoot;
};

}  // namespace kt::params
