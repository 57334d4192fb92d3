// Compound storages: a small file system inside one file, with named streams
// and named sub-storages nested to any depth, written directly or under a
// transaction. Element names are narrow text in the process's ANSI code
// page; every stream in a storage is an IXStream. Windows only: the compound
// file is the platform's OLE structured storage.
#pragma once

#include "kticore/core/Enum.h"
#include "kticore/core/Unknown.h"
#include "kticore/streams/Stream.h"

// A failed create or open of a storage throws; a failed create or open of a
// stream gives null. Callers test streams and catch storages.
struct IXStorage : IKTUnknown {
    // Creates a sub-storage, replacing one of that name; one reference.
    virtual IXStorage* CreateStorage(const char* name) = 0;
    virtual IXStorage* OpenStorage(const char* name) = 0;
    // Removes an element of either kind; throws on failure.
    virtual int DestroyStorage(const char* name) = 0;
    // The storage this one was opened from, with a reference; null at a root.
    virtual IXStorage* GetParent() = 0;
    // Names of the sub-storages, in the platform's order. The enumerator owns
    // them and outlives the storage.
    virtual CTEnum<const char*>* EnumStorages() = 0;
    // Creates a stream, replacing one of that name; null on failure.
    virtual IXStream* CreateStream(const char* name) = 0;
    virtual IXStream* OpenStream(const char* name) = 0;
    // The same removal as DestroyStorage.
    virtual int DestroyStream(const char* name) = 0;
    // Makes the changes durable; the platform's status, nothing is thrown.
    virtual int Commit() = 0;
    virtual CTEnum<const char*>* EnumStreams() = 0;
    // The path of the file the storage lives in (a sub-storage's too); the
    // address for a storage opened by URL; empty in memory.
    virtual const KTWCHAR* GetName() = 0;

protected:
    ~IXStorage() = default;
};

// Open flags of storages. A sub-storage inherits those of its parent.
enum XStorageFlags : int {
    XSTG_READONLY = 1,         // no writes
    XSTG_TRANSACTED = 2,       // changes reach the file at Commit only
    XSTG_TEMPFILE = 4,         // a new temporary file (creation only)
    XSTG_DELETEONRELEASE = 8,  // the file goes with the root's last release (creation only)
};

// A new compound file at `path` (an existing file is replaced, missing
// directories are made), in a new temporary file with XSTG_TEMPFILE (the path
// is then ignored), or in memory for a null path. A writable storage commits
// at its last release.
KTCORE_API IXStorage* new_Storage(const KTWCHAR* path, int flags);
// An existing compound file, or the local copy of a URL. For writing it is
// transacted; for reading it is not.
KTCORE_API IXStorage* open_Storage(const KTWCHAR* path, int readOnly);
// Downloads `url` to `localName` (a new temporary file when null or empty)
// and opens the copy. Commits reach the copy only; nothing is uploaded. The
// copy is deleted with the storage.
KTCORE_API IXStorage* open_UrlStorage(const KTWCHAR* url, const KTWCHAR* localName, int readOnly);
// A root storage over an OLE IStorage* of the caller, who keeps its own
// reference.
KTCORE_API IXStorage* new_StorageByOleStorage(void* storage);
// The OLE IStorage* of a storage made by new_Storage, open_Storage or
// new_StorageByOleStorage, with a reference for the caller.
KTCORE_API void* Storage_GetOLEStorage(IXStorage* storage);
