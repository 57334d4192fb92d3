// The service container behind IKTServiceContainer: an aggregatable object,
// so that its counting and QueryInterface belong to whatever controls it (its
// own shell, or a host's object that aggregates it).
#pragma once

#include "kticore/core/Aggregation.h"
#include "kticore/core/Map.h"
#include "kticore/objects/ServiceContainer.h"

namespace kt {

// Names to services; the table owns a copy of each name and one reference to
// each service.
using CServiceTable = CTMap<const char*, IKTUnknown*>;

}  // namespace kt

class CKTServiceContainer : public CKTContainedObject<CKTServiceContainer>, public IKTServiceContainer {
public:
    CKTServiceContainer() = default;
    CKTServiceContainer(const CKTServiceContainer&) = delete;
    CKTServiceContainer& operator=(const CKTServiceContainer&) = delete;
    ~CKTServiceContainer() override;

    ULONG AddRef() override { return CKTContainedObject::AddRef(); }
    ULONG Release() override { return CKTContainedObject::Release(); }
    int QueryInterface(const type_info& wanted, void** out) override {
        return CKTContainedObject::QueryInterface(wanted, out);
    }

    // What the shell asks for the interfaces of the container itself.
    int InternalQueryInterface(const type_info& wanted, void** out);

    int EnumServices(const type_info& iface, CTEnum<IKTUnknown*>** out) override;
    int EnumServiceNames(CTEnum<const char*>** out) override;
    int GetService(const char* name, IKTUnknown** out) override;
    int AddService(const char* name, IKTUnknown* service) override;
    int RemoveService(const char* name) override;
    void RemoveAllServices() override;

private:
    static constexpr DWORD kBuckets = 127;

    kt::CServiceTable services{nullptr, kBuckets};
    // What sinks get: the container without a counted reference.
    CUnknownInternal backPointer{static_cast<IKTServiceContainer*>(this)};
};
