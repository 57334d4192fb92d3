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
    // The section `path` below `baseSection`, or `baseSection` itself for a
    // null `path`. Throws XE_BAD_ARGUMENT for a section name the file cannot
    // hold.
    CIniFileParam(const char* file, const char* baseSection, const char* path, IParam* parent);
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
    // A new object on the section `path` below this one, which it writes
    // when the file lacks it.
    IParam* OpenBelow(const char* path);
    // The full name of the section `path` below this one.
    std::string SectionBelow(const char* path) const;
    // Every section name of the file, as a block of zero-terminated names
    // that ends with an empty one.
    std::string AllSectionNames() const;
    // Whether the file has a section deeper below the full name `name`.
    bool HasSectionsBelow(const std::string& name) const;

    CRegisteredInterfaces registered;
    ULONG refCount = 1;
    IParam* parent = nullptr;
    std::string file;
    std::string section;
    int sectionLength;
    int isRoot;
};

}  // namespace kt::params
