// The POSIX implementation of the file seam. Three things of Windows have no
// POSIX counterpart and are kept here:
//
// - Share modes. Each open takes shared open-file-description locks on four
//   bytes far behind any data: one per kind of access it has and one per
//   kind of access it denies to others. Before it takes them it tests, under
//   a short exclusive lock on a fifth byte, that nobody denies what it wants
//   and nobody has what it denies. The locks go with the descriptor, so they
//   hold between processes and between opens of one process, as on Windows,
//   and a file that anybody holds open can not be deleted or renamed.
// - The read-only attribute: a file without write permission bits refuses
//   opens for writing, also to a privileged user.
// - Failures: errno is translated to the Win32 error of the same situation.
//
// Reserved device names (NUL, CON, COM1, ...) answer as on Windows; see
// DosDevices.h.
#include "platform/FileSystem.h"

#include <dirent.h>
#include <fcntl.h>
#include <glob.h>
#include <pwd.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <map>
#include <mutex>
#include <vector>

#include "platform/TextConversion.h"
#include "platform/posix/DosDevices.h"

namespace kt::sys {

using posix::DosDevice;
using posix::DosDeviceError;
using posix::DosDeviceNamed;

const FileHandle kNoFile = -1;
const MappingHandle kNoMapping = -1;

namespace {

using WideString = std::basic_string<KTWCHAR>;

thread_local DWORD lastError = 0;

// The lock bytes of the share modes.
constexpr off_t kShareBytes = 0x7FFFFFFF00000000;
constexpr off_t kHasRead = kShareBytes, kHasWrite = kShareBytes + 1;
constexpr off_t kDeniesRead = kShareBytes + 2, kDeniesWrite = kShareBytes + 3;
constexpr off_t kGate = kShareBytes + 4;

std::string Utf8(const KTWCHAR* name) {
    if (name == nullptr)
        return std::string();  // fails as an empty name does
    const int length = static_cast<int>(std::char_traits<KTWCHAR>::length(name));
    std::string text(static_cast<size_t>(length) * 3, '\0');
    text.resize(static_cast<size_t>(WideToMultiByte(kUtf8CodePage, name, length, text.data(),
                                                    static_cast<int>(text.size()))));
    return text;
}

WideString Wide(const std::string& text) {
    WideString wide(text.size(), KTWCHAR{});
    wide.resize(static_cast<size_t>(MultiByteToWide(kUtf8CodePage, text.data(),
                                                    static_cast<int>(text.size()), wide.data(),
                                                    static_cast<int>(wide.size()))));
    return wide;
}

// Allocates nothing: a failed open by a converted name asks it too.
bool ParentExists(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    if (slash == std::string::npos)
        return true;
    char parent[PATH_MAX];
    const size_t length = slash == 0 ? 1 : slash;
    if (length >= sizeof parent)
        return false;
    parent[path.copy(parent, length)] = 0;
    struct stat facts;
    return stat(parent, &facts) == 0 && S_ISDIR(facts.st_mode);
}

// The Win32 error of an errno from a call on `path`.
DWORD ErrorOf(int error, const std::string& path) {
    switch (error) {
    case ENOENT: return !path.empty() && ParentExists(path) ? kErrorFileNotFound : kErrorPathNotFound;
    case ENOTDIR: return kErrorPathNotFound;
    case EACCES: case EPERM: case EROFS: case EISDIR: return kErrorAccessDenied;
    case EEXIST: return 183;         // ERROR_ALREADY_EXISTS
    case ENOSPC: case EDQUOT: return 112;  // ERROR_DISK_FULL
    case EMFILE: case ENFILE: return 4;    // ERROR_TOO_MANY_OPEN_FILES
    case ENAMETOOLONG: return 206;   // ERROR_FILENAME_EXCED_RANGE
    case EBUSY: case ETXTBSY: return kErrorSharingViolation;
    case ENOTEMPTY: return 145;      // ERROR_DIR_NOT_EMPTY
    case EXDEV: return 17;           // ERROR_NOT_SAME_DEVICE
    case EIO: return 1117;           // ERROR_IO_DEVICE
    case ENOMEM: return 8;           // ERROR_NOT_ENOUGH_MEMORY
    case EINVAL: return 87;          // ERROR_INVALID_PARAMETER
    default: return 31;              // ERROR_GEN_FAILURE
    }
}

bool Fail(DWORD error) {
    lastError = error;
    return false;
}

bool FailErrno(const std::string& path) { return Fail(ErrorOf(errno, path)); }

bool LockByte(int fd, off_t byte, short type, bool wait) {
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    return fcntl(fd, wait ? F_OFD_SETLKW : F_OFD_SETLK, &lock) == 0;
}

// Whether another open file description holds a lock on `byte`.
bool HeldByOthers(int fd, off_t byte) {
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    return fcntl(fd, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

// Takes the share-mode locks of an open with `access` and `share`; false
// when another open forbids it.
bool TakeShare(int fd, DWORD access, DWORD share) {
    const bool reads = (access & kGenericRead) != 0, writes = (access & kGenericWrite) != 0;
    const bool deniesRead = (share & kShareRead) == 0, deniesWrite = (share & kShareWrite) == 0;
    LockByte(fd, kGate, F_WRLCK, true);
    const bool refused = (reads && HeldByOthers(fd, kDeniesRead)) ||
                         (writes && HeldByOthers(fd, kDeniesWrite)) ||
                         (deniesRead && HeldByOthers(fd, kHasRead)) ||
                         (deniesWrite && HeldByOthers(fd, kHasWrite));
    if (!refused) {
        const std::pair<bool, off_t> bytes[] = {{reads, kHasRead}, {writes, kHasWrite},
                                                {deniesRead, kDeniesRead}, {deniesWrite, kDeniesWrite}};
        for (const auto& [wanted, byte] : bytes)
            if (wanted)
                LockByte(fd, byte, F_RDLCK, false);
    }
    LockByte(fd, kGate, F_UNLCK, false);
    return !refused;
}

// Whether any open of the file is alive: Windows refuses to delete or rename
// a file that is open without delete sharing, which no open here grants.
bool HeldOpen(const std::string& path) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = kShareBytes;
    lock.l_len = 4;
    const bool held = fcntl(fd, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    close(fd);
    return held;
}

bool IsReadOnly(const struct stat& facts) { return (facts.st_mode & 0222) == 0; }

bool Exists(const std::string& path) {
    struct stat facts;
    return lstat(path.c_str(), &facts) == 0;
}

// A failed rename's error: a missing source is the source's, any other
// failure is the target's (a missing directory, an existing file).
bool FailRename(const std::string& source, const std::string& target) {
    const int error = errno;
    return Fail(ErrorOf(error, error == ENOENT && !Exists(source) ? source : target));
}

// Devices know no share modes: two opens of NUL that deny all sharing both
// succeed, as on Windows.
FileHandle OpenDevice(DosDevice device, bool writes) {
    if (device != DosDevice::Null)
        return Fail(DosDeviceError(device)), kNoFile;
    const int fd = open(posix::kNullDevicePath, O_CLOEXEC | (writes ? O_RDWR : O_RDONLY));
    return fd >= 0 ? fd : (FailErrno(posix::kNullDevicePath), kNoFile);
}

// A device is no file to move, and can not take a file's place
// (ERROR_BAD_DEV_TYPE). 0 when neither end is a device.
DWORD DeviceMoveError(const std::string& source, const std::string& target) {
    if (const DosDevice device = DosDeviceNamed(source); device != DosDevice::None)
        return DosDeviceError(device);
    return DosDeviceNamed(target) != DosDevice::None ? 66 : 0;
}

constexpr DWORD kAttributeArchive = 0x20;

// Names of the open files that go with their last handle.
std::mutex deleteOnCloseLock;
std::map<int, std::string>& DeleteOnClose() {
    static std::map<int, std::string> names;
    return names;
}

}  // namespace

DWORD LastFileError() { return lastError; }
void SetLastFileError(DWORD error) { lastError = error; }

FileHandle CreateFileHandle(const KTWCHAR* name, DWORD access, DWORD share, DWORD disposition,
                            DWORD flagsAndAttributes) {
    return CreateFileHandle(Utf8(name), access, share, disposition, flagsAndAttributes);
}

SystemName SystemNameOf(const KTWCHAR* name) { return Utf8(name); }

// Allocates nothing, but for the name of a file to delete on close.
FileHandle CreateFileHandle(const std::string& path, DWORD access, DWORD share, DWORD disposition,
                            DWORD flagsAndAttributes) {
    const bool writes = (access & kGenericWrite) != 0;
    if (const DosDevice device = DosDeviceNamed(path); device != DosDevice::None)
        return OpenDevice(device, writes);
    struct stat facts;
    const bool exists = stat(path.c_str(), &facts) == 0;
    if (exists && S_ISDIR(facts.st_mode))
        return Fail(kErrorAccessDenied), kNoFile;
    if (exists && writes && IsReadOnly(facts))
        return Fail(kErrorAccessDenied), kNoFile;
    if (!exists && disposition == kOpenExisting)
        return Fail(ErrorOf(ENOENT, path)), kNoFile;
    if (exists && disposition == 1)  // CREATE_NEW
        return Fail(80), kNoFile;    // ERROR_FILE_EXISTS
    int flags = O_CLOEXEC | (writes ? O_RDWR : O_RDONLY);
    if (disposition != kOpenExisting)
        flags |= O_CREAT;
    const mode_t mode = (flagsAndAttributes & kAttributeReadOnly) ? 0444 : 0666;
    const int fd = open(path.c_str(), flags, mode);
    if (fd < 0)
        return FailErrno(path), kNoFile;
    if (!TakeShare(fd, access, share)) {
        close(fd);
        return Fail(kErrorSharingViolation), kNoFile;
    }
    // Truncation waits until the share modes have admitted the open.
    if (disposition == kCreateAlways && ftruncate(fd, 0) != 0) {
        close(fd);
        return FailErrno(path), kNoFile;
    }
    if (flagsAndAttributes & kDeleteOnClose) {
        std::lock_guard<std::mutex> guard(deleteOnCloseLock);
        DeleteOnClose()[fd] = path;
    }
    return fd;
}

bool CloseFileHandle(FileHandle file) {
    {
        std::lock_guard<std::mutex> guard(deleteOnCloseLock);
        auto found = DeleteOnClose().find(file);
        if (found != DeleteOnClose().end()) {
            unlink(found->second.c_str());
            DeleteOnClose().erase(found);
        }
    }
    return close(file) == 0 || Fail(ErrorOf(errno, ""));
}

DWORD FileSize(FileHandle file) {
    struct stat facts;
    if (fstat(file, &facts) != 0)
        return Fail(ErrorOf(errno, "")), 0xFFFFFFFF;
    return static_cast<DWORD>(facts.st_size);
}

bool CutFile(FileHandle file, DWORD length) {
    return ftruncate(file, length) == 0 || FailErrno("");
}

DWORD AllocationGranularity() { return 65536; }

MappingHandle CreateMapping(FileHandle file, bool writable, DWORD maximumSize) {
    struct stat facts;
    if (fstat(file, &facts) != 0)
        return FailErrno(""), kNoMapping;
    if (!S_ISREG(facts.st_mode))
        return Fail(6), kNoMapping;  // ERROR_INVALID_HANDLE: a device has no bytes to map
    if (writable && facts.st_size < static_cast<off_t>(maximumSize) &&
        ftruncate(file, maximumSize) != 0)
        return FailErrno(""), kNoMapping;
    if (!writable && facts.st_size == 0)
        return Fail(1006), kNoMapping;  // ERROR_FILE_INVALID: nothing to map
    return file;
}

bool CloseMapping(MappingHandle) { return true; }

void* MapView(MappingHandle mapping, bool writable, DWORD offset, DWORD bytes) {
    void* view = mmap(nullptr, bytes, writable ? PROT_READ | PROT_WRITE : PROT_READ, MAP_SHARED | MAP_POPULATE,
                      mapping, offset);
    if (view == MAP_FAILED)
        return FailErrno(""), nullptr;
    return view;
}

bool UnmapView(void* view, DWORD bytes) { return munmap(view, bytes) == 0 || FailErrno(""); }

bool FlushView(void* view, DWORD bytes) {
    return msync(view, bytes, MS_SYNC) == 0 || FailErrno("");
}

bool RemoveFile(const KTWCHAR* name) {
    const std::string path = Utf8(name);
    if (const DosDevice device = DosDeviceNamed(path); device != DosDevice::None)
        return Fail(DosDeviceError(device));
    struct stat facts;
    if (lstat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode))
        return Fail(kErrorAccessDenied);
    if (HeldOpen(path))
        return Fail(kErrorSharingViolation);
    return unlink(path.c_str()) == 0 || FailErrno(path);
}

bool MoveFileTo(const KTWCHAR* from, const KTWCHAR* to) {
    const std::string source = Utf8(from), target = Utf8(to);
    if (const DWORD refused = DeviceMoveError(source, target))
        return Fail(refused);
    if (HeldOpen(source))
        return Fail(kErrorSharingViolation);
    return renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0 ||
           FailRename(source, target);
}

bool ReplaceFileWith(const KTWCHAR* from, const KTWCHAR* to) {
    const std::string source = Utf8(from), target = Utf8(to);
    if (const DWORD refused = DeviceMoveError(source, target))
        return Fail(refused);
    if (HeldOpen(source) || HeldOpen(target))
        return Fail(kErrorSharingViolation);
    return rename(source.c_str(), target.c_str()) == 0 || FailRename(source, target);
}

bool CopyFileTo(const KTWCHAR* from, const KTWCHAR* to, bool failIfExists) {
    if (const DosDevice device = DosDeviceNamed(Utf8(from)); device != DosDevice::None)
        return Fail(DosDeviceError(device));  // no file to copy from; NUL takes a copy
    const int source = CreateFileHandle(from, kGenericRead, kShareRead, kOpenExisting, 0);
    if (source == kNoFile)
        return false;
    struct stat facts;
    fstat(source, &facts);
    const int target = CreateFileHandle(to, kGenericWrite, 0, failIfExists ? 1 : kCreateAlways,
                                        IsReadOnly(facts) ? kAttributeReadOnly : 0);
    if (target == kNoFile) {
        close(source);
        return false;
    }
    std::vector<char> buffer(1 << 16);
    bool copied = true;
    for (ssize_t got; (got = read(source, buffer.data(), buffer.size())) != 0;) {
        if (got < 0 || write(target, buffer.data(), static_cast<size_t>(got)) != got) {
            copied = FailErrno(Utf8(to));
            break;
        }
    }
    close(source);
    close(target);
    return copied;
}

bool MakeDirectory(const KTWCHAR* name) {
    const std::string path = Utf8(name);
    return mkdir(path.c_str(), 0777) == 0 || FailErrno(path);
}

bool RemoveDirectoryAt(const KTWCHAR* name) {
    const std::string path = Utf8(name);
    return rmdir(path.c_str()) == 0 || FailErrno(path);
}

DWORD CurrentDirectory(DWORD size, KTWCHAR* buffer) {
    char path[4096];
    if (getcwd(path, sizeof path) == nullptr)
        return Fail(ErrorOf(errno, "")), 0;
    const WideString wide = Wide(path);
    if (wide.size() + 1 > size)
        return static_cast<DWORD>(wide.size() + 1);
    std::char_traits<KTWCHAR>::copy(buffer, wide.c_str(), wide.size() + 1);
    return static_cast<DWORD>(wide.size());
}

bool ChangeCurrentDirectory(const KTWCHAR* name) {
    const std::string path = Utf8(name);
    return chdir(path.c_str()) == 0 || FailErrno(path);
}

DWORD FileAttributes(const KTWCHAR* name) {
    const std::string path = Utf8(name);
    if (DosDeviceNamed(path) != DosDevice::None)
        return kAttributeArchive;
    struct stat facts;
    if (stat(path.c_str(), &facts) != 0)
        return FailErrno(path), kNoAttributes;
    if (S_ISDIR(facts.st_mode))
        return kAttributeDirectory | (IsReadOnly(facts) ? kAttributeReadOnly : 0);
    return IsReadOnly(facts) ? kAttributeReadOnly : kAttributeArchive;
}

bool SetReadOnly(const KTWCHAR* name, bool readOnly) {
    const std::string path = Utf8(name);
    struct stat facts;
    if (stat(path.c_str(), &facts) != 0)
        return FailErrno(path);
    const mode_t mode = readOnly ? facts.st_mode & ~mode_t{0222} : facts.st_mode | 0200;
    return chmod(path.c_str(), mode) == 0 || FailErrno(path);
}

bool FindFile(const KTWCHAR* name, FoundFile& found) {
    std::string path = Utf8(name);
    if (path.empty())
        return Fail(kErrorPathNotFound);
    // A trailing delimiter or a bare root names no file, as for FindFirstFileW.
    if (path.back() == '/')
        return Fail(kErrorFileNotFound);
    const bool wildcards = path.find_first_of("*?") != std::string::npos;
    if (!wildcards && DosDeviceNamed(path) != DosDevice::None) {
        // Every device name is found, with no size and the zero file time.
        found = {0, 1601, 1, 1, 1, 0, 0, 0};
        return true;
    }
    if (wildcards) {
        glob_t matches;
        const int status = glob(path.c_str(), 0, nullptr, &matches);
        if (status != 0 || matches.gl_pathc == 0) {
            globfree(&matches);
            return Fail(kErrorFileNotFound);
        }
        path = matches.gl_pathv[0];
        globfree(&matches);
    }
    struct stat facts;
    if (stat(path.c_str(), &facts) != 0)
        return FailErrno(path);
    struct tm time;
    gmtime_r(&facts.st_mtime, &time);
    found = {static_cast<DWORD>(facts.st_size),         static_cast<WORD>(time.tm_year + 1900),
             static_cast<WORD>(time.tm_mon + 1),         static_cast<WORD>(time.tm_wday),
             static_cast<WORD>(time.tm_mday),            static_cast<WORD>(time.tm_hour),
             static_cast<WORD>(time.tm_min),             static_cast<WORD>(time.tm_sec)};
    return true;
}

DWORD TempPath(DWORD size, KTWCHAR* buffer) {
    const char* directory = std::getenv("TMPDIR");
    std::string path = directory != nullptr && *directory != 0 ? directory : "/tmp";
    if (path.back() != '/')
        path += '/';
    const WideString wide = Wide(path);
    if (wide.size() + 1 > size)
        return static_cast<DWORD>(wide.size() + 1);
    std::char_traits<KTWCHAR>::copy(buffer, wide.c_str(), wide.size() + 1);
    return static_cast<DWORD>(wide.size());
}

bool TempFileName(const KTWCHAR* directory, const KTWCHAR* prefix, KTWCHAR* name) {
    std::string base = Utf8(directory);
    if (!base.empty() && base.back() != '/')
        base += '/';
    const std::string stem = Utf8(prefix).substr(0, 3);
    // Like Windows: four hex digits from a counter that starts at the clock.
    static std::atomic<unsigned> next{static_cast<unsigned>(std::time(nullptr) ^ getpid())};
    for (int attempt = 0; attempt < 0x10000; ++attempt) {
        const unsigned unique = next++ & 0xFFFF;
        if (unique == 0)
            continue;
        char file[16];
        std::snprintf(file, sizeof file, "%X.TMP", unique);
        const std::string path = base + stem + file;
        const WideString wide = Wide(path);  // before the file exists: nothing is left on a failure
        if (wide.size() >= 260)
            return Fail(206);
        const int fd = open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
        if (fd >= 0) {
            close(fd);
            std::char_traits<KTWCHAR>::copy(name, wide.c_str(), wide.size() + 1);
            return true;
        }
        if (errno != EEXIST)
            return FailErrno(path);
    }
    return Fail(80);  // ERROR_FILE_EXISTS: every number is taken
}

QuietCriticalErrors::QuietCriticalErrors() : previous(0) {}
QuietCriticalErrors::~QuietCriticalErrors() = default;

bool MayReadAndWrite(const KTWCHAR* name) { return access(Utf8(name).c_str(), R_OK | W_OK) == 0; }

bool FileOwner(const KTWCHAR* name, WideString& owner) {
    struct stat facts;
    if (stat(Utf8(name).c_str(), &facts) != 0)
        return false;
    struct passwd entry;
    struct passwd* found = nullptr;
    char buffer[4096];
    if (getpwuid_r(facts.st_uid, &entry, buffer, sizeof buffer, &found) != 0 || found == nullptr)
        return false;
    // A local account's domain is the machine.
    char host[256] = "";
    gethostname(host, sizeof host - 1);
    owner = Wide(std::string(entry.pw_name) + " " + host);
    return true;
}

bool PathIsUrl(const KTWCHAR* name) {
    if (name == nullptr)
        return false;
    // A scheme of two characters or more: one letter is a drive.
    size_t length = 0;
    for (; name[length] != 0 && name[length] != ':'; ++length) {
        const KTWCHAR c = name[length];
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        const bool other = (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
        if (!letter && (length == 0 || !other))
            return false;
    }
    return name[length] == ':' && length >= 2;
}

}  // namespace kt::sys

namespace kt::sys {

bool IsVolumePrefix(const KTWCHAR*, size_t length) { return length == 0; }

}  // namespace kt::sys
