// The table by which a parameter back end answers QueryInterface: type names
// to the objects entered for them through IRegisterIface.
#pragma once

#include "kticore/core/Map.h"
#include "kticore/params/Param.h"

namespace kt::params {

// One entry: the type's raw name (borrowed from its type_info), the object,
// and whether the entry holds a reference on it.
struct _tIKTUnknown {
    _tIKTUnknown(const char* name, IKTUnknown* object, int addRef);
    _tIKTUnknown(const _tIKTUnknown&) = delete;
    _tIKTUnknown& operator=(const _tIKTUnknown&) = delete;
    ~_tIKTUnknown();

    const char* name;
    IKTUnknown* object;
    int addRef;
};

// Keyed by the raw name as type_info gives it, hashed without case folding.
// Emptied, with its references released, when it goes.
class CRegisteredInterfaces : public CTMap<const char*, _tIKTUnknown*> {
public:
    // What IRegisterIface::RegisterInterface answers.
    int Register(IKTUnknown* object, const type_info& type, int addRef);
    // What QueryInterface answers: on a hit one reference on the object
    // (stored in *out unless `out` is null) and 1; on a miss null and 0.
    int Answer(const type_info& type, void** out);
};

}  // namespace kt::params
