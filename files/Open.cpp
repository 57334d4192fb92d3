// The two entry points of the file layer. Both look at the name in the same
// order: a memory name, a URL, else a file on disk.
#include <new>
#include <string>

#include "files/MappedFile.h"
#include "files/MemoryFile.h"
#include "files/MemoryName.h"
#include "files/NameRules.h"
#include "files/OutputFile.h"
#include "kticore/files/FileUtilities.h"
#include "kticore/files/UrlFiles.h"
#include "platform/FileSystem.h"

namespace {

// The code of a failure to make the temporary file beside a target.
DWORD TemporaryFileError(DWORD win32Error) {
    switch (win32Error) {
    case 3: case 53: case 123: case 161: case 267:
        return XE_PATH_NOT_FOUND;
    case 5:
        return XE_ACCESS_DENIED;
    case 64: case 65: case 66: case 67:
        return XE_NETWORK;
    default:
        return XE_NO_MEMORY;
    }
}

// A target that no file can have is refused before anything is made. The
// empty name is not refused here: like any other name the system can not
// make, it fails at Commit.
void CheckTargetName(const KTWCHAR* name) {
    if (name == nullptr)
        throw CXFileException(XE_PATH_NOT_FOUND, name, XFILEOP_OPEN);
    if (const DWORD refused = kt::RefusedNameError(name))
        throw CXFileException(XErrorFromWin32(refused), name, XFILEOP_OPEN);
}

IXOutFile* OpenOut(const KTWCHAR* name, int flags) {
    if (kt::IsMemoryName(name))
        return kt::NewMemoryFile(name);
    if (Fio_PathIsURL(name))
        return Fio_UrlOpenOut(name, flags);
    CheckTargetName(name);
    if (Fio_IsFileExist(name) && !Fio_IsWritableFile(name))
        throw CXException(XE_ACCESS_DENIED);
    // The temporary file lies beside the target, on its volume.
    CXStringW directory = CXStringW(name).FilePath();
    if (directory.GetLength() == 0)
        directory = KTW(".");
    KTWCHAR temporary[512];
    if (!kt::sys::TempFileName(directory, KTW("KTPR"), temporary))
        throw CXException(TemporaryFileError(kt::sys::LastFileError()));
    try {
        return kt::NewOutputFile(name, temporary, flags | FIO_WRITE);
    } catch (...) {
        kt::sys::RemoveFile(temporary);  // a refused target leaves nothing behind
        throw;
    }
}

}  // namespace

// Where the memory runs out, at any step, there is no file.
IXFile* Fio_Open(const KTWCHAR* name, int flags) {
    try {
        if (kt::IsMemoryName(name))
            return kt::NewMemoryFile(name);
        if (Fio_PathIsURL(name))
            return Fio_UrlOpen(name, flags);
        return new kt::CXFile(name, flags);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

IXOutFile* Fio_OpenOut(const KTWCHAR* name, int flags) {
    try {
        return OpenOut(name, flags);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
