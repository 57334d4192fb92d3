// CRegistryParam: the parameter back end over the system registry. One object
// stands for one open key, which it owns; a section is a sub-key, a value a
// registry value. Everything goes straight to the registry, and a section's
// object has no link to the one that made it.
#pragma once

#include "params/RegisteredInterfaces.h"

namespace kt::params {

class CRegistryParam final : public IParam, public IRegisterIface {
public:
    // Takes over `key`.
    explicit CRegistryParam(HKEY key);
    ~CRegistryParam();
    CRegistryParam(const CRegistryParam&) = delete;
    CRegistryParam& operator=(const CRegistryParam&) = delete;

    // A new object on `key`; the key is closed if the object cannot be made.
    static IParam* OnKey(HKEY key);

    ULONG AddRef() override { return ++refCount; }
    ULONG Release() override;
    int QueryInterface(const type_info& type, void** out) override;

    int RegisterInterface(IKTUnknown* object, const type_info& type, int addRef) override;

    IParam* CreateSection(const char* path) override;
    IParam* GetSection(const char* path, int create) override;
    void DeleteSection(const char* path) override;
    void DeleteAllSections() override;
    CTEnum<const char*>* EnumSections() override;
    int GetValue(const char* name, tagKTVARIANT* value) override;
    void SetValue(const char* name, const tagKTVARIANT* value) override;
    void DeleteValue(const char* name) override;
    void DeleteAllValues() override;
    CTEnum<const char*>* EnumValues() override;
    void Clear() override;

private:
    HKEY key;
    CRegisteredInterfaces registered;
    ULONG refCount = 1;
};

}  // namespace kt::params
