// CIXStorParam: the parameter back end over a compound storage. A section is
// a sub-storage, a value a stream holding one stored variant; nothing else
// lies in the storage. Every object stands for one storage and holds its
// parent object, so the storages on its path stay open while it lives; each
// GetSection makes a new object. Changes are committed when the objects go,
// children before parents.
#pragma once

#include "kticore/core/Exception.h"
#include "kticore/params/StorageParam.h"
#include "kticore/strings/XString.h"
#include "params/RegisteredInterfaces.h"

namespace kt::params {

class CIXStorParam final : public CKTUnknownImplParent<IParam, IParam>, public IRegisterIface {
public:
    // A section on `storage`, on which it takes its own reference, below
    // `parent` (null at a root), named `name` in the parent's storage.
    CIXStorParam(IXStorage* storage, IParam* parent, const char* name);
    ~CIXStorParam() override;

    ULONG AddRef() override { return CKTUnknownImplParent::AddRef(); }
    // The last release commits the storage before it lets go of the parent.
    ULONG Release() override;
    int QueryInterface(const type_info& type, void** out) override;

    int RegisterInterface(IKTUnknown* object, const type_info& type, int addRef) override;

    IParam* CreateSection(const char* path) override;
    IParam* GetSection(const char* path, int create) override;
    void DeleteSection(const char* path) override;
    void DeleteAllSections() override;
    CTEnum<const char*>* EnumSections() override;
    int GetValue(const char* path, tagKTVARIANT* value) override;
    void SetValue(const char* path, const tagKTVARIANT* value) override;
    void DeleteValue(const char* name) override;
    void DeleteAllValues() override;
    CTEnum<const char*>* EnumValues() override;
    // Ends the section: its content goes, then its storage is removed from
    // the parent's. Afterwards the object has no storage, and every
    // operation but Release answers as for a failure of the storage.
    void Clear() override;

private:
    // What `action` gives; `failed` when the section has ended or the
    // storage throws a CXException (other exceptions go on).
    template <class Result, class Action>
    Result Guarded(Result failed, Action action) {
        if (storage == nullptr)
            return failed;
        try {
            return action();
        } catch (const CXException&) {
            return failed;
        }
    }
    template <class Action>
    void Guarded(Action action) {
        Guarded(0, [&] {
            action();
            return 0;
        });
    }

    // A new object below this one on `childStorage`, whose reference it
    // takes over; when `rest` is not null, what `next` gives on it for `rest`.
    template <class Next>
    IParam* Below(IXStorage* childStorage, const char* name, const char* rest, Next next);

    CRegisteredInterfaces registered;
    CXString name;
    IXStorage* storage;  // null once the section has ended
};

}  // namespace kt::params
