// Aggregation: one object made an inseparable part of another, so that a
// client sees one identity. The contained object forwards its counting and its
// QueryInterface to the controlling ("outer") object; the shell CKTAggObject
// is that controlling object when the contained one stands alone.
#pragma once

#include "kticore/core/Unknown.h"

// The base of an aggregatable class T. `outer` holds no reference: it is the
// shell that contains this object, or the object that aggregates it.
template <class T>
class CKTContainedObject : public IKTUnknown {
public:
    ULONG AddRef() override { return outer->AddRef(); }
    ULONG Release() override { return outer->Release(); }
    int QueryInterface(const type_info& wanted, void** out) override {
        return outer->QueryInterface(wanted, out);
    }
    virtual ~CKTContainedObject() = default;

    IKTUnknown* outer = nullptr;
};

// The outer shell. T supplies a non-virtual
//     int InternalQueryInterface(const type_info& wanted, void** out)
// that answers for T's own interfaces and adds the reference itself.
template <class T>
class CKTAggObject : public IKTUnknown {
public:
    CKTAggObject() = default;
    CKTAggObject(const CKTAggObject&) = delete;
    CKTAggObject& operator=(const CKTAggObject&) = delete;

    // Unlike CKTUnknownImpl, answers the count before the increment.
    ULONG AddRef() override { return refs++; }

    ULONG Release() override {
        if (--refs == 0) {
            delete this;
            return 0;
        }
        return refs;
    }

    // `out` may not be null here.
    int QueryInterface(const type_info& wanted, void** out) override {
        *out = nullptr;
        if (wanted == typeid(IKTUnknown)) {
            *out = static_cast<IKTUnknown*>(this);
            AddRef();
            return 1;
        }
        return contained.InternalQueryInterface(wanted, out) ? 1 : 0;
    }

    virtual ~CKTAggObject() = default;

    ULONG refs = 1;
    T contained;
};

// The creation protocol of an aggregatable class: with an outer object the
// caller may only ask for IKTUnknown (it gets the shell, whose counting is its
// own); without one, the shell controls the contained object itself.
// Returns what QueryInterface returned; the shell's creation reference is
// dropped, so the caller's reference is the only one.
template <class T>
int KTCreateAggregate(IKTUnknown* outer, const type_info& wanted, void** out) {
    if (outer != nullptr && wanted != typeid(IKTUnknown))
        return 0;
    CKTAggObject<T>* shell = new CKTAggObject<T>;
    shell->contained.outer = outer != nullptr ? outer : shell;
    const int found = shell->QueryInterface(wanted, out);
    shell->Release();
    return found;
}
