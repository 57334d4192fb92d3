// The ways to a root storage: a compound file made or opened at a path, a
// new temporary file, a block of memory, or an OLE storage of the caller's.
#include "kticore/core/Exception.h"
#include "kticore/files/FileUtilities.h"
#include "kticore/storage/CompoundStorage.h"
#include "platform/OleStorage.h"
#include "storage/StorageModes.h"
#include "storage/UrlStorage.h"

namespace {

[[noreturn]] void ThrowStatus(HRESULT status, const KTWCHAR* name) {
    throw CXFileException(XErrorFromHResult(static_cast<DWORD>(status)), name, XFILEOP_OPEN);
}

// The root takes its own reference; the one OLE gave goes.
IXStorage* NewRoot(const CXStringW& name, DWORD flags, IStorage* storage) {
    IXStorage* root = new CStorage(name, flags, storage, nullptr);
    storage->Release();
    return root;
}

}  // namespace

IXStorage* new_Storage(const KTWCHAR* path, int flags) {
    const DWORD mode = kt::NewRootMode(flags);
    CXStringW name(path != nullptr ? path : KTW(""));
    IStorage* storage = nullptr;
    HRESULT status;
    if (flags & XSTG_TEMPFILE) {
        name = Fio_GetTempFileName();
        status = kt::sys::CreateCompoundFile(name, mode, &storage);
    } else if (path != nullptr) {
        Fio_CreateDirectory(CXStringW(path).FilePath());
        status = kt::sys::CreateCompoundFile(path, mode, &storage);
    } else {
        status = kt::sys::CreateCompoundFileInMemory(mode, &storage);
    }
    if (FAILED(status))
        ThrowStatus(status, path);
    return NewRoot(name, flags, storage);
}

IXStorage* open_Storage(const KTWCHAR* path, int readOnly) {
    if (Fio_PathIsURL(path))
        return open_UrlStorage(path, nullptr, readOnly);
    const DWORD flags = kt::OpenRootFlags(readOnly);
    IStorage* storage = nullptr;
    const HRESULT status = kt::sys::OpenCompoundFile(path, kt::OpenStorageMode(flags), &storage);
    if (FAILED(status))
        ThrowStatus(status, path);
    return NewRoot(path, flags, storage);
}

IXStorage* new_StorageByOleStorage(void* ole) {
    auto* storage = static_cast<IStorage*>(ole);
    STATSTG stat;
    const HRESULT status = storage->Stat(&stat, STATFLAG_NONAME);
    if (FAILED(status))
        ThrowStatus(status, nullptr);
    return new CStorage(CXStringW(), kt::FlagsOfOleMode(stat.grfMode), storage, nullptr);
}

void* Storage_GetOLEStorage(IXStorage* storage) {
    IStorage* ole = static_cast<CStorage*>(storage)->OleStorage();
    ole->AddRef();
    return ole;
}
