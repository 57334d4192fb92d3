// The container's table operations, the order in which sinks are told, and
// the factory that the library registers under the class's own name.
#include "objects/ServiceContainer.h"

#include <memory>
#include <new>

#include "core/Library.h"
#include "kticore/objects/Registry.h"
#include "objects/ServiceEnum.h"

namespace {

constexpr char kClassName[] = "CLSID_OFSERVICECONTAINER";

// Drops a reference also when a sink throws on the way.
struct ReleaseReference {
    void operator()(IKTUnknown* object) const { object->Release(); }
};
using HeldReference = std::unique_ptr<IKTUnknown, ReleaseReference>;

// Calls `notice` if the service is an IKTServiceSink.
void Notify(IKTUnknown* service, int (IKTServiceSink::*notice)(IKTUnknown*), IKTUnknown* container) {
    void* answer = nullptr;
    if (!service->QueryInterface(typeid(IKTServiceSink), &answer))
        return;
    auto* sink = static_cast<IKTServiceSink*>(answer);
    const HeldReference held(sink);
    (sink->*notice)(container);
}

using RemovalNotice = void (*)(IKTUnknown* service, IKTUnknown* container);

void NotifyRemoved(IKTUnknown* service, IKTUnknown* container) {
    Notify(service, &IKTServiceSink::OnServiceRemoved, container);
}

// A sink that throws while its container is destroyed cannot keep the
// others from being told.
void NotifyRemovedCarryingOn(IKTUnknown* service, IKTUnknown* container) {
    try {
        NotifyRemoved(service, container);
    } catch (...) {
    }
}

// Tells each service of the table, in table order, that it leaves; all of
// them are still in the table meanwhile.
void NotifyEachRemoved(kt::CServiceTable& services, IKTUnknown* container, RemovalNotice notice) {
    CTMapPosition position;
    while (IKTUnknown** service = services.NextValue(position))
        notice(*service, container);
}

// The library's one class, in the registry from load to unload. The registry
// is built by the first registration, so it outlives this.
struct CServiceContainerClass {
    CServiceContainerClass() { RegisterObject(kClassName, kt::LibraryModule()); }
    ~CServiceContainerClass() { UnregisterObject(kClassName); }
} serviceContainerClass;

}  // namespace

CKTServiceContainer::~CKTServiceContainer() {
    // The controlling object's count has reached 0: a reference a sink took
    // now would destroy it a second time, so sinks told from here on find
    // nothing through their pointer.
    backPointer.target = nullptr;
    NotifyEachRemoved(services, &backPointer, NotifyRemovedCarryingOn);
    // Released here rather than by the table's destructor, while the pointer
    // that sinks were given still exists.
    services.RemoveAll();
}

int CKTServiceContainer::InternalQueryInterface(const type_info& wanted, void** out) {
    if (wanted != typeid(IKTServiceContainer))
        return 0;
    *out = static_cast<IKTServiceContainer*>(this);
    AddRef();
    return 1;
}

int CKTServiceContainer::EnumServices(const type_info& iface, CTEnum<IKTUnknown*>** out) {
    if (out != nullptr)
        *out = new (std::nothrow) CServiceEnum(services, iface);
    return 1;
}

int CKTServiceContainer::EnumServiceNames(CTEnum<const char*>** out) {
    if (out != nullptr)
        *out = new (std::nothrow) CServiceNameEnum(services);
    return 1;
}

int CKTServiceContainer::GetService(const char* name, IKTUnknown** out) {
    if (name == nullptr)
        return 0;
    IKTUnknown* service = nullptr;
    if (out == nullptr)
        return services.Lookup(name, service);
    return services.Lookup(name, *out, 1);
}

int CKTServiceContainer::AddService(const char* name, IKTUnknown* service) {
    if (name == nullptr || service == nullptr || GetService(name, nullptr))
        return 0;
    if (!services.Set(name, service))
        return 0;
    Notify(service, &IKTServiceSink::OnServiceAdded, &backPointer);
    return 1;
}

int CKTServiceContainer::RemoveService(const char* name) {
    IKTUnknown* service = nullptr;
    if (!GetService(name, &service))
        return 0;
    // Keeps the service alive from the moment the table lets it go until its
    // sink has been told.
    const HeldReference held(service);
    services.Remove(name);
    NotifyRemoved(service, &backPointer);
    return 1;
}

void CKTServiceContainer::RemoveAllServices() {
    NotifyEachRemoved(services, &backPointer, NotifyRemoved);
    services.Clear();
}

int CLSID_OFSERVICECONTAINER(IKTUnknown* outer, const type_info& iface, IKTUnknown** out) {
    if (out == nullptr)
        return 0;
    return KTCreateAggregate<CKTServiceContainer>(outer, iface, reinterpret_cast<void**>(out));
}
