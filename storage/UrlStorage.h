// CUrlStorage: a compound file behind a URL, worked on as a downloaded local
// copy. Every operation goes to the copy's storage but GetName, which gives
// the URL; commits reach the copy only, and nothing is uploaded.
#pragma once

#include "kticore/storage/Storage.h"
#include "kticore/strings/XStringW.h"

namespace kt {

class CUrlStorage : public CKTUnknownImpl<IXStorage> {
public:
    // Downloads and opens the copy; throws XE_NETWORK when the download
    // fails, and the copy's own failures as they come.
    CUrlStorage(const KTWCHAR* url, const KTWCHAR* localName, int readOnly);
    ~CUrlStorage() override;

    int QueryInterface(const type_info& wanted, void** out) override {
        return storage->QueryInterface(wanted, out);
    }
    IXStorage* CreateStorage(const char* name) override { return storage->CreateStorage(name); }
    IXStorage* OpenStorage(const char* name) override { return storage->OpenStorage(name); }
    int DestroyStorage(const char* name) override { return storage->DestroyStorage(name); }
    IXStorage* GetParent() override { return storage->GetParent(); }
    CTEnum<const char*>* EnumStorages() override { return storage->EnumStorages(); }
    IXStream* CreateStream(const char* name) override { return storage->CreateStream(name); }
    IXStream* OpenStream(const char* name) override { return storage->OpenStream(name); }
    int DestroyStream(const char* name) override { return storage->DestroyStream(name); }
    int Commit() override { return storage->Commit(); }
    CTEnum<const char*>* EnumStreams() override { return storage->EnumStreams(); }
    const KTWCHAR* GetName() override { return url; }

private:
    IXStorage* storage = nullptr;
    CXStringW url;
    CXStringW localName;
};

}  // namespace kt
