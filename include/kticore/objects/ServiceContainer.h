// A named table of objects that the modules of an application share. A host
// creates one by the class name "CLSID_OFSERVICECONTAINER" through the
// registry (CreateObject), standing alone or aggregated into an object of its
// own, adds services under names and hands the container on.
//
// Names are narrow text and, as in the registry, are known by their 32-bit
// hash alone: two names with one hash are one name. A taken name is never
// replaced. Nothing here throws by itself; what a service throws from its
// QueryInterface or its sink passes out, with the table as far as it got.
#pragma once

#include "kticore/core/Enum.h"
#include "kticore/core/Unknown.h"

struct IKTServiceContainer : IKTUnknown {
    // An enumerator over the services that answer `iface`, each handed out
    // with a reference for the caller; once at the end, it begins again.
    // Always 1, also for a null `out`; `*out` is null only when memory ran
    // out. No enumerator may outlive its container, and one is stable only
    // while nothing is added or removed.
    virtual int EnumServices(const type_info& iface, CTEnum<IKTUnknown*>** out) = 0;
    // An enumerator over the names, which point into the table. As above.
    virtual int EnumServiceNames(CTEnum<const char*>** out) = 0;
    // 1 and the service with a reference for the caller, or 0 for an absent
    // name. A null `out` only tests.
    virtual int GetService(const char* name, IKTUnknown** out) = 0;
    // 1 when added (the container holds a reference), 0 when the name is
    // taken. A service that is an IKTServiceSink is told afterwards.
    virtual int AddService(const char* name, IKTUnknown* service) = 0;
    // 1 when removed, 0 for an absent name. The sink is told after the name
    // has left the table, while the service is still alive.
    virtual int RemoveService(const char* name) = 0;
    // Tells every sink while all entries are still in the table, then
    // releases every service. The container stays usable.
    virtual void RemoveAllServices() = 0;

protected:
    ~IKTServiceContainer() = default;
};

// What a service implements to learn that it enters or leaves a container.
// `container` is uncounted and lives as long as the container: AddRef and
// Release on it do nothing, and its QueryInterface gives the container's
// interfaces with a reference, the way to reach sibling services. Results are
// ignored.
struct IKTServiceSink : IKTUnknown {
    virtual int OnServiceAdded(IKTUnknown* container) = 0;
    virtual int OnServiceRemoved(IKTUnknown* container) = 0;

protected:
    ~IKTServiceSink() = default;
};

// The container's factory, registered at load under its own name. With an
// `outer` object only IKTUnknown may be asked for (the inner object that the
// outer one keeps and asks for IKTServiceContainer); otherwise 0 and nothing
// is made.
extern "C" KTCORE_API int CLSID_OFSERVICECONTAINER(IKTUnknown* outer, const type_info& iface,
                                                   IKTUnknown** out);
