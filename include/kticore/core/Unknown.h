// The object model: every object that crosses a module boundary is reference
// counted and asked for its interfaces by run-time type. There are no GUIDs:
// an interface is its type_info, so the interface's name is the contract.
#pragma once

#include "kticore/platform/Platform.h"

// The root of all interfaces. A null `out` in QueryInterface is a pure test:
// it answers 1 or 0 and adds no reference.
struct IKTUnknown {
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
    virtual int QueryInterface(const type_info& wanted, void** out) = 0;

protected:
    // Objects die through Release, never through delete on an interface.
    ~IKTUnknown() = default;
};

// The common implementation of IKTUnknown for an object with one interface I.
// The public operations only forward to the Internal ones through the virtual
// table, so a derived class can change the public behaviour (a static object
// that ignores counting, a class with more interfaces) and still reach the
// default behaviour.
template <class I>
class CKTUnknownImpl : public I {
public:
    CKTUnknownImpl() = default;
    CKTUnknownImpl(const CKTUnknownImpl&) = delete;
    CKTUnknownImpl& operator=(const CKTUnknownImpl&) = delete;

    ULONG AddRef() override { return InternalAddRef(); }
    ULONG Release() override { return InternalRelease(); }
    int QueryInterface(const type_info& wanted, void** out) override {
        return InternalQueryInterface(wanted, out);
    }

    virtual ~CKTUnknownImpl() = default;

    virtual ULONG InternalAddRef() { return ++refs; }

    virtual ULONG InternalRelease() {
        if (--refs == 0) {
            delete this;
            return 0;
        }
        return refs;
    }

    // Answers for IKTUnknown and I with the object's own address; a hit adds
    // one reference through the public AddRef.
    virtual int InternalQueryInterface(const type_info& wanted, void** out) {
        I* found = (wanted == typeid(IKTUnknown) || wanted == typeid(I)) ? this : nullptr;
        if (out == nullptr)
            return found != nullptr;
        *out = found;
        if (found == nullptr)
            return 0;
        this->AddRef();
        return 1;
    }

protected:
    ULONG refs = 1;  // `new` hands the creator one reference
};

// An object that hangs below a parent of type P and holds one reference to it.
// It counts in a field of its own; the base's count stays at 1.
template <class I, class P>
class CKTUnknownImplParent : public CKTUnknownImpl<I> {
public:
    ULONG AddRef() override { return ++ownRefs; }

    ULONG Release() override {
        if (--ownRefs != 0)
            return ownRefs;
        if (parent != nullptr)
            parent->Release();
        delete this;
        return 0;
    }

    virtual void SetParent(P* newParent) {
        if (newParent != nullptr)
            newParent->AddRef();
        if (parent != nullptr)
            parent->Release();
        parent = newParent;
    }

    // The parent with one added reference for the caller, or null.
    virtual P* GetParent() {
        if (parent != nullptr)
            parent->AddRef();
        return parent;
    }

protected:
    ULONG ownRefs = 1;
    P* parent = nullptr;
};

// Stands in for an object where an IKTUnknown* is needed but no reference may
// be held: counting does nothing, QueryInterface goes to the target. Without
// a target it answers for nothing.
class CUnknownInternal : public IKTUnknown {
public:
    explicit CUnknownInternal(IKTUnknown* target = nullptr) : target(target) {}
    virtual ~CUnknownInternal() = default;

    ULONG AddRef() override { return 0; }
    ULONG Release() override { return 0; }
    int QueryInterface(const type_info& wanted, void** out) override {
        if (target != nullptr)
            return target->QueryInterface(wanted, out);
        if (out != nullptr)
            *out = nullptr;
        return 0;
    }

    IKTUnknown* target;
};
