// CIXDocStorage: a storage of a document. It hands out document storages and
// document streams over what the storage under it gives, and forwards the
// rest. A child holds the top document storage; the top one holds the sink.
#pragma once

#include "kticore/storage/DocStorage.h"

namespace kt {

class CIXDocStorage final : public CKTUnknownImpl<IXStorage> {
public:
    // Takes a reference on each; a null `root` makes the top document storage.
    CIXDocStorage(IXStorage* storage, CIXDocStorage* root, KTIFC::IProgress* progress, int flags);
    // Releases the sink, the top document storage, then the storage under it.
    ~CIXDocStorage() override;

    int QueryInterface(const type_info& wanted, void** out) override;

    IXStorage* CreateStorage(const char* name) override;
    IXStorage* OpenStorage(const char* name) override;
    int DestroyStorage(const char* name) override { return storage->DestroyStorage(name); }
    IXStorage* GetParent() override { return storage->GetParent(); }
    CTEnum<const char*>* EnumStorages() override { return storage->EnumStorages(); }
    IXStream* CreateStream(const char* name) override;
    IXStream* OpenStream(const char* name) override;
    int DestroyStream(const char* name) override { return storage->DestroyStream(name); }
    int Commit() override { return storage->Commit(); }
    CTEnum<const char*>* EnumStreams() override { return storage->EnumStreams(); }
    const KTWCHAR* GetName() override { return storage->GetName(); }

    // Throws XE_CANCELLED when the sink says stop.
    void CheckCancelled();

    IXStorage* BaseStorage() const { return storage; }
    int Flags() const { return flags; }

private:
    CIXDocStorage* Top() { return root != nullptr ? root : this; }
    IXStorage* WrapStorage(IXStorage* inner);
    IXStream* WrapStream(IXStream* inner);

    IXStorage* storage;
    CIXDocStorage* root;
    KTIFC::IProgress* progress;
    int flags;
};

}  // namespace kt
