// CStorage: the storage over one OLE IStorage, as new_Storage, open_Storage
// and new_StorageByOleStorage make it. Hosts that made a storage so may cast
// it to CStorage to revert a transaction.
#pragma once

#include "kticore/storage/Storage.h"
#include "kticore/strings/XStringW.h"

class CStorage : public CKTUnknownImpl<IXStorage> {
public:
    // Takes its own references on `storage` and `parent`. `name` is the
    // root's path: a sub-storage keeps its file's name, not its own.
    CStorage(const CXStringW& name, DWORD flags, IStorage* storage, CStorage* parent);

    int QueryInterface(const type_info& wanted, void** out) override;

    IXStorage* CreateStorage(const char* name) override;
    IXStorage* OpenStorage(const char* name) override;
    int DestroyStorage(const char* name) override;
    IXStorage* GetParent() override;
    CTEnum<const char*>* EnumStorages() override;
    IXStream* CreateStream(const char* name) override;
    IXStream* OpenStream(const char* name) override;
    int DestroyStream(const char* name) override;
    int Commit() override;
    CTEnum<const char*>* EnumStreams() override;
    const KTWCHAR* GetName() override { return name; }

    // A writable storage, transacted or not, commits here.
    ~CStorage() override;

    // Drops what a transaction has not committed; nothing without one.
    virtual void Revert();
    // A slot of the object's table that nothing calls.
    virtual int Reserved() { return 0; }

    IStorage* OleStorage() const { return storage; }

private:
    IXStorage* NewChild(IStorage* child);
    CTEnum<const char*>* EnumElements(DWORD wantedType);
    int DestroyElement(const char* name);

    CXStringW name;
    DWORD flags;
    IStorage* storage;
    CStorage* parent;
};
