// Files and directories as the library needs them: the Win32 calls of the
// same names, with their arguments and results. Natively the POSIX side keeps
// the contract: failures are reported as Win32 error numbers, share modes
// hold between opens as on Windows (in this process and across processes),
// a file without write permission is read-only for everybody, and a mapping
// larger than its file extends the file.
#pragma once

#include <cstdint>
#include <string>

#include "kticore/platform/Platform.h"

namespace kt::sys {

#if defined(_WIN32)
using FileHandle = HANDLE;
using MappingHandle = HANDLE;
#else
using FileHandle = int;
using MappingHandle = int;
#endif
extern const FileHandle kNoFile;
extern const MappingHandle kNoMapping;

// Win32 values, for both builds.
constexpr DWORD kGenericRead = 0x80000000;
constexpr DWORD kGenericWrite = 0x40000000;
constexpr DWORD kShareRead = 1;
constexpr DWORD kShareWrite = 2;
constexpr DWORD kCreateAlways = 2;
constexpr DWORD kOpenExisting = 3;
constexpr DWORD kDeleteOnClose = 0x04000000;
constexpr DWORD kAttributeReadOnly = 0x1;
constexpr DWORD kAttributeDirectory = 0x10;
constexpr DWORD kNoAttributes = 0xFFFFFFFF;

constexpr DWORD kErrorFileNotFound = 2;
constexpr DWORD kErrorPathNotFound = 3;
constexpr DWORD kErrorAccessDenied = 5;
constexpr DWORD kErrorSharingViolation = 32;
constexpr DWORD kErrorInsufficientBuffer = 122;

// The Win32 error of the last failed call of this seam on this thread.
DWORD LastFileError();
void SetLastFileError(DWORD error);

// CreateFileW. kNoFile on failure.
FileHandle CreateFileHandle(const KTWCHAR* name, DWORD access, DWORD share, DWORD disposition,
                      DWORD flagsAndAttributes);

// A name in the form the system's calls take. Converted once, it opens a
// file without asking for memory, so that what must not fail for lack of
// it (a lock taking its handle back) can open by it.
#if defined(_WIN32)
using SystemName = std::basic_string<KTWCHAR>;
#else
using SystemName = std::string;
#endif
SystemName SystemNameOf(const KTWCHAR* name);
// CreateFileHandle by a converted name: allocates nothing.
FileHandle CreateFileHandle(const SystemName& name, DWORD access, DWORD share, DWORD disposition,
                            DWORD flagsAndAttributes);
bool CloseFileHandle(FileHandle file);
// The low 32 bits of the size.
DWORD FileSize(FileHandle file);
// SetFilePointer to `length`, then SetEndOfFile.
bool CutFile(FileHandle file, DWORD length);

// The unit of view offsets (GetSystemInfo's allocation granularity).
DWORD AllocationGranularity();
// CreateFileMappingW over the whole file, or with `maximumSize` for writing,
// which extends the file to that size. kNoMapping on failure.
MappingHandle CreateMapping(FileHandle file, bool writable, DWORD maximumSize);
bool CloseMapping(MappingHandle mapping);
// MapViewOfFile of `bytes` at `offset`, a multiple of the granularity.
void* MapView(MappingHandle mapping, bool writable, DWORD offset, DWORD bytes);
bool UnmapView(void* view, DWORD bytes);
bool FlushView(void* view, DWORD bytes);

bool RemoveFile(const KTWCHAR* name);
// MoveFileW: fails when `to` exists.
bool MoveFileTo(const KTWCHAR* from, const KTWCHAR* to);
// Puts `from` in the place of an existing `to` in one step: at no moment
// is `to` missing (MoveFileExW with MOVEFILE_REPLACE_EXISTING).
bool ReplaceFileWith(const KTWCHAR* from, const KTWCHAR* to);
bool CopyFileTo(const KTWCHAR* from, const KTWCHAR* to, bool failIfExists);
bool MakeDirectory(const KTWCHAR* name);
bool RemoveDirectoryAt(const KTWCHAR* name);
// GetCurrentDirectoryW: the length, or the size needed when `size` is short.
DWORD CurrentDirectory(DWORD size, KTWCHAR* buffer);
bool ChangeCurrentDirectory(const KTWCHAR* name);
// GetFileAttributesW: kNoAttributes on failure.
DWORD FileAttributes(const KTWCHAR* name);
bool SetReadOnly(const KTWCHAR* name, bool readOnly);

// What FindFirstFileW tells of the first match of `name` (which may hold
// wildcards): the low 32 bits of the size and the last write time in UTC.
struct FoundFile {
    DWORD size;
    WORD year, month, dayOfWeek, day, hour, minute, second;
};
bool FindFile(const KTWCHAR* name, FoundFile& found);

// GetTempPathW: the directory with a trailing delimiter; 0 on failure.
DWORD TempPath(DWORD size, KTWCHAR* buffer);
// GetTempFileNameW with number 0: makes a new empty file named from the
// first three characters of `prefix` in `directory`; `name` gets 260 units.
bool TempFileName(const KTWCHAR* directory, const KTWCHAR* prefix, KTWCHAR* name);

// While one lives, failing disk calls raise no critical-error dialogs
// (SetErrorMode), and the earlier mode comes back afterwards.
class QuietCriticalErrors {
public:
    QuietCriticalErrors();
    ~QuietCriticalErrors();
    QuietCriticalErrors(const QuietCriticalErrors&) = delete;
    QuietCriticalErrors& operator=(const QuietCriticalErrors&) = delete;

private:
    [[maybe_unused]] unsigned previous;  // the mode to restore, where there is one
};

// Whether the current user may read and write `name` by its access rights.
bool MayReadAndWrite(const KTWCHAR* name);
// The owner of a file: account name, one blank, domain.
bool FileOwner(const KTWCHAR* name, std::basic_string<KTWCHAR>& owner);

// PathIsURLW.
bool PathIsUrl(const KTWCHAR* name);

}  // namespace kt::sys

namespace kt::sys {

// Whether the text before a path's delimiter names a volume rather than a
// directory to make: a drive ("c:") on Windows, the root (nothing) natively.
bool IsVolumePrefix(const KTWCHAR* prefix, size_t length);

}  // namespace kt::sys
