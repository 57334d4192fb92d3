// The Win32 implementation of the file seam: the platform's own calls.
#include "platform/FileSystem.h"

#include <aclapi.h>
#include <shlwapi.h>

#include <vector>

namespace kt::sys {

const FileHandle kNoFile = INVALID_HANDLE_VALUE;
const MappingHandle kNoMapping = nullptr;

DWORD LastFileError() { return ::GetLastError(); }
void SetLastFileError(DWORD error) { ::SetLastError(error); }

FileHandle CreateFileHandle(const KTWCHAR* name, DWORD access, DWORD share, DWORD disposition,
                            DWORD flagsAndAttributes) {
    // Windows refuses to write a read-only file to everybody; Wine, run by a
    // privileged user, would let the open through.
    if (access & GENERIC_WRITE) {
        const DWORD attributes = ::GetFileAttributesW(name);
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) &&
            !(attributes & FILE_ATTRIBUTE_DIRECTORY)) {
            ::SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        }
    }
    return ::CreateFileW(name, access, share, nullptr, disposition, flagsAndAttributes, nullptr);
}

SystemName SystemNameOf(const KTWCHAR* name) { return name; }

FileHandle CreateFileHandle(const SystemName& name, DWORD access, DWORD share, DWORD disposition,
                            DWORD flagsAndAttributes) {
    return CreateFileHandle(name.c_str(), access, share, disposition, flagsAndAttributes);
}

bool CloseFileHandle(FileHandle file) { return ::CloseHandle(file) != 0; }

DWORD FileSize(FileHandle file) { return ::GetFileSize(file, nullptr); }

bool CutFile(FileHandle file, DWORD length) {
    ::SetFilePointer(file, static_cast<LONG>(length), nullptr, FILE_BEGIN);
    return ::SetEndOfFile(file) != 0;
}

DWORD AllocationGranularity() {
    SYSTEM_INFO info;
    ::GetSystemInfo(&info);
    return info.dwAllocationGranularity;
}

MappingHandle CreateMapping(FileHandle file, bool writable, DWORD maximumSize) {
    return ::CreateFileMappingW(file, nullptr, writable ? PAGE_READWRITE : PAGE_READONLY, 0,
                                writable ? maximumSize : 0, nullptr);
}

bool CloseMapping(MappingHandle mapping) { return ::CloseHandle(mapping) != 0; }

void* MapView(MappingHandle mapping, bool writable, DWORD offset, DWORD bytes) {
    return ::MapViewOfFile(mapping, writable ? FILE_MAP_WRITE : FILE_MAP_READ, 0, offset, bytes);
}

bool UnmapView(void* view, DWORD) { return ::UnmapViewOfFile(view) != 0; }

bool FlushView(void* view, DWORD) { return ::FlushViewOfFile(view, 0) != 0; }

bool RemoveFile(const KTWCHAR* name) { return ::DeleteFileW(name) != 0; }

bool MoveFileTo(const KTWCHAR* from, const KTWCHAR* to) {
    // Wine's MoveFileW refuses an empty target without saying why; the
    // reason is the one the system gives for an empty name elsewhere.
    ::SetLastError(ERROR_SUCCESS);
    if (::MoveFileW(from, to))
        return true;
    if (::GetLastError() == ERROR_SUCCESS)
        ::SetLastError(ERROR_PATH_NOT_FOUND);
    return false;
}

bool ReplaceFileWith(const KTWCHAR* from, const KTWCHAR* to) {
    return ::MoveFileExW(from, to, MOVEFILE_REPLACE_EXISTING) != 0;
}

bool CopyFileTo(const KTWCHAR* from, const KTWCHAR* to, bool failIfExists) {
    return ::CopyFileW(from, to, failIfExists) != 0;
}

bool MakeDirectory(const KTWCHAR* name) { return ::CreateDirectoryW(name, nullptr) != 0; }

bool RemoveDirectoryAt(const KTWCHAR* name) { return ::RemoveDirectoryW(name) != 0; }

DWORD CurrentDirectory(DWORD size, KTWCHAR* buffer) {
    return ::GetCurrentDirectoryW(size, buffer);
}

bool ChangeCurrentDirectory(const KTWCHAR* name) { return ::SetCurrentDirectoryW(name) != 0; }

DWORD FileAttributes(const KTWCHAR* name) { return ::GetFileAttributesW(name); }

bool SetReadOnly(const KTWCHAR* name, bool readOnly) {
    const DWORD attributes = ::GetFileAttributesW(name);
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return false;
    const DWORD changed = readOnly ? attributes | FILE_ATTRIBUTE_READONLY
                                   : attributes & ~DWORD{FILE_ATTRIBUTE_READONLY};
    return ::SetFileAttributesW(name, changed) != 0;
}

bool FindFile(const KTWCHAR* name, FoundFile& found) {
    WIN32_FIND_DATAW data;
    const HANDLE search = ::FindFirstFileW(name, &data);
    if (search == INVALID_HANDLE_VALUE)
        return false;
    ::FindClose(search);
    SYSTEMTIME time;
    ::FileTimeToSystemTime(&data.ftLastWriteTime, &time);
    found = {data.nFileSizeLow, time.wYear, time.wMonth, time.wDayOfWeek,
             time.wDay,         time.wHour, time.wMinute, time.wSecond};
    return true;
}

DWORD TempPath(DWORD size, KTWCHAR* buffer) { return ::GetTempPathW(size, buffer); }

bool TempFileName(const KTWCHAR* directory, const KTWCHAR* prefix, KTWCHAR* name) {
    return ::GetTempFileNameW(directory, prefix, 0, name) != 0;
}

QuietCriticalErrors::QuietCriticalErrors()
    : previous(::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX)) {}

QuietCriticalErrors::~QuietCriticalErrors() { ::SetErrorMode(previous); }

bool MayReadAndWrite(const KTWCHAR* name) {
    const SECURITY_INFORMATION wanted =
        OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;
    DWORD size = 0;
    if (::GetFileSecurityW(name, wanted, nullptr, 0, &size) ||
        ::GetLastError() != ERROR_INSUFFICIENT_BUFFER)
        return false;
    std::vector<unsigned char> descriptor(size);
    if (!::GetFileSecurityW(name, wanted, descriptor.data(), size, &size))
        return false;
    HANDLE token = nullptr;
    if (!::OpenProcessToken(::GetCurrentProcess(),
                            TOKEN_IMPERSONATE | TOKEN_QUERY | TOKEN_DUPLICATE | STANDARD_RIGHTS_READ,
                            &token))
        return false;
    HANDLE impersonation = nullptr;
    bool granted = false;
    if (::DuplicateToken(token, SecurityImpersonation, &impersonation)) {
        GENERIC_MAPPING mapping = {0x120089, 0x120116, 0x1200A0, 0x1F01FF};
        DWORD access = GENERIC_READ | GENERIC_WRITE;
        ::MapGenericMask(&access, &mapping);
        PRIVILEGE_SET privileges = {};
        DWORD privilegesSize = sizeof privileges;
        DWORD grantedAccess = 0;
        BOOL status = FALSE;
        granted = ::AccessCheck(descriptor.data(), impersonation, access, &mapping, &privileges,
                                &privilegesSize, &grantedAccess, &status) &&
                  status;
        ::CloseHandle(impersonation);
    }
    ::CloseHandle(token);
    return granted;
}

bool FileOwner(const KTWCHAR* name, std::basic_string<KTWCHAR>& owner) {
    const HANDLE file = ::CreateFileW(name, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    PSID sid = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const DWORD status = ::GetSecurityInfo(file, SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &sid,
                                           nullptr, nullptr, nullptr, &descriptor);
    ::CloseHandle(file);
    if (status != ERROR_SUCCESS)
        return false;
    DWORD accountSize = 0, domainSize = 0;
    SID_NAME_USE use;
    ::LookupAccountSidW(nullptr, sid, nullptr, &accountSize, nullptr, &domainSize, &use);
    std::vector<wchar_t> account(accountSize + 1), domain(domainSize + 1);
    const bool found = accountSize != 0 &&
                       ::LookupAccountSidW(nullptr, sid, account.data(), &accountSize,
                                           domain.data(), &domainSize, &use);
    ::LocalFree(descriptor);
    if (!found)
        return false;
    owner = std::basic_string<KTWCHAR>(account.data()) + L" " + domain.data();
    return true;
}

bool PathIsUrl(const KTWCHAR* name) { return name != nullptr && ::PathIsURLW(name); }

}  // namespace kt::sys

namespace kt::sys {

bool IsVolumePrefix(const KTWCHAR* prefix, size_t length) {
    return length != 0 && prefix[length - 1] == ':';
}

}  // namespace kt::sys
