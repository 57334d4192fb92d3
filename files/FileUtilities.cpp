// The Fio functions on names. Each reports a failure of the system as a
// CXFileException with its operation number, and treats memory names and
// URLs in its own way.
#include "kticore/files/FileUtilities.h"

#include <string>

#include "files/FileInfoRecord.h"
#include "files/LockStepAside.h"
#include "files/MemoryName.h"
#include "files/TempFile.h"
#include "kticore/files/UrlFiles.h"
#include "platform/FileSystem.h"

namespace {

// The room of the temporary directory and of a temporary file's name.
constexpr DWORD kPathCapacity = 512;

[[noreturn]] void ThrowLastError(const KTWCHAR* name, DWORD operation) {
    throw CXFileException(XErrorFromWin32(kt::sys::LastFileError()), name, operation);
}

bool IsDelimiter(KTWCHAR unit) { return unit == '\\' || unit == '/'; }

}  // namespace

void Fio_CopyFile(const KTWCHAR* from, const KTWCHAR* to, int failIfExists) {
    if (!kt::sys::CopyFileTo(from, to, failIfExists != 0))
        ThrowLastError(from, XFILEOP_COPY);
}

void Fio_DeleteFile(const KTWCHAR* name) {
    if (kt::IsMemoryName(name))
        return;
    if (Fio_PathIsURL(name)) {
        Fio_UrlDeleteFile(name);  // a file that is not there is no failure
        return;
    }
    if (!kt::sys::RemoveFile(name))
        ThrowLastError(name, XFILEOP_DELETE);
}

void Fio_RenameFile(const KTWCHAR* from, const KTWCHAR* to) {
    if (!kt::sys::MoveFileTo(from, to))
        ThrowLastError(from, XFILEOP_RENAME);
}

void Fio_CreateDirectory(const KTWCHAR* name) {
    if (kt::IsMemoryName(name))
        return;
    if (Fio_PathIsURL(name)) {
        Fio_UrlCreateDirectory(name);
        return;
    }
    if (name == nullptr || *name == 0 || Fio_IsFileExist(name))
        return;
    CXStringW path(name);
    path.AddDirDelim();
    const std::basic_string<KTWCHAR> text(static_cast<const KTWCHAR*>(path));
    for (size_t end = 0; end < text.size(); ++end) {
        if (!IsDelimiter(text[end]))
            continue;
        const std::basic_string<KTWCHAR> prefix = text.substr(0, end);
        if (kt::sys::IsVolumePrefix(prefix.c_str(), prefix.size()) || Fio_IsFileExist(prefix.c_str()))
            continue;
        if (!kt::sys::MakeDirectory(prefix.c_str()))
            ThrowLastError(prefix.c_str(), XFILEOP_CREATE_DIRECTORY);
    }
}

void Fio_DeleteDirectory(const KTWCHAR* name) {
    if (!kt::sys::RemoveDirectoryAt(name))
        ThrowLastError(name, XFILEOP_DELETE_DIRECTORY);
}

void Fio_GetCurrentDirectory(KTWCHAR* buffer, int size) {
    kt::sys::CurrentDirectory(static_cast<DWORD>(size), buffer);
}

void Fio_SetCurrentDirectory(const KTWCHAR* name) {
    if (!kt::sys::ChangeCurrentDirectory(name))
        ThrowLastError(name, XFILEOP_SET_DIRECTORY);
}

void Fio_GetFileInfo(const KTWCHAR* name, FioFileInfo* info) {
    if (kt::IsMemoryName(name)) {
        info->size = kt::ParseMemoryName(name).size;
        return;
    }
    if (Fio_PathIsURL(name)) {
        Fio_UrlGetFileInfo(name, info);
        return;
    }
    kt::sys::FoundFile found;
    {
        const kt::sys::QuietCriticalErrors quiet;
        // A null name is the empty one: the system says why it fails.
        if (!kt::sys::FindFile(name != nullptr ? name : KTW(""), found))
            ThrowLastError(name, XFILEOP_FILE_INFO);
    }
    *info = kt::FileInfoRecord(found);
}

int Fio_IsFileExist(const KTWCHAR* name) {
    try {
        FioFileInfo info;
        Fio_GetFileInfo(name, &info);
        return 1;
    } catch (const CXException&) {
        return 0;
    }
}

int Fio_IsWritableFile(const KTWCHAR* name) {
    if (kt::IsMemoryName(name))
        return 1;
    if (Fio_PathIsURL(name))
        return Fio_UrlIsWritableFile(name);
    // This process's own non-exclusive lock does not count against the file.
    const kt::CLockStepAside stepAside(name);
    const DWORD attributes = kt::sys::FileAttributes(name);
    if (attributes == kt::sys::kNoAttributes)
        return 1;  // what does not exist may be written
    if (attributes & kt::sys::kAttributeReadOnly)
        return 0;
    // Anybody else's open, in whatever mode, keeps this probe out.
    const kt::sys::FileHandle probe = kt::sys::CreateFileHandle(
        name, kt::sys::kGenericRead | kt::sys::kGenericWrite, 0, kt::sys::kOpenExisting, 0x20000021);
    if (probe == kt::sys::kNoFile)
        return 0;
    kt::sys::CloseFileHandle(probe);
    return 1;
}

int Fio_IsWritableFile(const KTWCHAR* name, CXStringW&) { return Fio_IsWritableFile(name) != 0; }

int Fio_IsWritableDir(const KTWCHAR* name) { return kt::sys::MayReadAndWrite(name); }

int Fio_GetSecurityInfo(const KTWCHAR* name, CXStringW& owner) {
    std::basic_string<KTWCHAR> text;
    if (!kt::sys::FileOwner(name, text))
        return 0;
    owner = text.c_str();
    return 1;
}

// Never throws: where the system makes no file the name is empty.
std::basic_string<KTWCHAR> kt::NewTempFile() {
    KTWCHAR directory[kPathCapacity] = {};
    KTWCHAR name[kPathCapacity] = {};
    const DWORD length = sys::TempPath(kPathCapacity, directory);
    if (length == 0 || length >= kPathCapacity || !sys::TempFileName(directory, KTW("KTPR"), name))
        return {};
    return name;
}

// One buffer for the process: a pointer handed out stays valid, its text
// is the next call's.
const KTWCHAR* Fio_GetTempFileName() {
    static KTWCHAR name[kPathCapacity];
    const std::basic_string<KTWCHAR> made = kt::NewTempFile();
    std::char_traits<KTWCHAR>::copy(name, made.c_str(), made.size() + 1);
    return name;
}

int Fio_PathIsURL(const KTWCHAR* name) { return kt::sys::PathIsUrl(name); }
