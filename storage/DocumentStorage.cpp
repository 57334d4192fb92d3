#include "storage/DocumentStorage.h"

#include "kticore/core/Exception.h"
#include "params/Held.h"
#include "storage/DocumentStream.h"

namespace kt {

CIXDocStorage::CIXDocStorage(IXStorage* storage, CIXDocStorage* root, KTIFC::IProgress* progress,
                             int flags)
    : storage(storage), root(root), progress(progress), flags(flags) {
    storage->AddRef();
    if (root != nullptr)
        root->AddRef();
    progress->AddRef();
}

CIXDocStorage::~CIXDocStorage() {
    progress->Release();
    if (root != nullptr)
        root->Release();
    storage->Release();
}

int CIXDocStorage::QueryInterface(const type_info& wanted, void** out) {
    if (InternalQueryInterface(wanted, out))
        return 1;
    if (wanted == typeid(KTIFC::IProgress))
        return progress->QueryInterface(wanted, out);
    return 0;
}

void CIXDocStorage::CheckCancelled() {
    if (progress->IsCancelled() != 0)
        throw CXException(XE_CANCELLED);
}

// The wrapper keeps its own reference on what the storage under it gave.
IXStorage* CIXDocStorage::WrapStorage(IXStorage* inner) {
    const params::Held<IXStorage> given(inner);
    return inner != nullptr ? new CIXDocStorage(inner, Top(), progress, flags) : nullptr;
}

IXStream* CIXDocStorage::WrapStream(IXStream* inner) {
    const params::Held<IXStream> given(inner);
    return inner != nullptr ? new CIXDocStream(inner, Top(), flags) : nullptr;
}

IXStorage* CIXDocStorage::CreateStorage(const char* name) {
    return WrapStorage(storage->CreateStorage(name));
}

IXStorage* CIXDocStorage::OpenStorage(const char* name) {
    return WrapStorage(storage->OpenStorage(name));
}

IXStream* CIXDocStorage::CreateStream(const char* name) {
    return WrapStream(storage->CreateStream(name));
}

IXStream* CIXDocStorage::OpenStream(const char* name) {
    return WrapStream(storage->OpenStream(name));
}

}  // namespace kt

int new_CIXDocStorage(IXStorage* storage, KTIFC::IProgress* progress, IXStorage** out, int flags) {
    if (storage == nullptr)
        throw CXIFaceException(&typeid(IXStorage));
    if (progress == nullptr)
        throw CXIFaceException(&typeid(KTIFC::IProgress));
    if (out == nullptr)
        throw CXException(XE_BAD_ARGUMENT);
    progress->SetRange(0, 100);
    *out = new kt::CIXDocStorage(storage, nullptr, progress, flags);
    return 1;
}
