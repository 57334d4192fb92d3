#include "params/RegisteredInterfaces.h"

namespace kt::params {

_tIKTUnknown::_tIKTUnknown(const char* name, IKTUnknown* object, int addRef)
    : name(name), object(object), addRef(addRef) {
    if (addRef != 0)
        object->AddRef();
}

_tIKTUnknown::~_tIKTUnknown() {
    if (addRef != 0)
        object->Release();
}

int CRegisteredInterfaces::Register(IKTUnknown* object, const type_info& type, int addRef) {
    const int removed = Remove(type.name());
    if (object == nullptr)
        return removed;
    Set(type.name(), new _tIKTUnknown(type.name(), object, addRef));
    return 1;
}

int CRegisteredInterfaces::Answer(const type_info& type, void** out) {
    _tIKTUnknown* entry = nullptr;
    if (!Lookup(type.name(), entry)) {
        if (out != nullptr)
            *out = nullptr;
        return 0;
    }
    if (out != nullptr) {
        entry->object->AddRef();
        *out = entry->object;
    }
    return 1;
}

}  // namespace kt::params
