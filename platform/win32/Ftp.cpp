// The FTP seam over WinInet.
#include "platform/Ftp.h"

#include <wininet.h>

namespace kt::sys {
namespace {

// Every transfer and listing is fetched from the server and stored nowhere.
constexpr DWORD kFromServerOnly = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE;
constexpr DWORD kTransferFlags =
    kFromServerOnly | INTERNET_FLAG_RESYNCHRONIZE | FTP_TRANSFER_TYPE_BINARY;
constexpr DWORD kStoreFlags = kFromServerOnly | FTP_TRANSFER_TYPE_BINARY;

HINTERNET Handle(void* handle) { return static_cast<HINTERNET>(handle); }

// A part that the URL holds, as a pointer into it and a length.
WideString Part(const wchar_t* start, DWORD length) {
    return start != nullptr ? WideString(start, length) : WideString();
}

RemoteEntry EntryOf(const WIN32_FIND_DATAW& data) {
    SYSTEMTIME time = {};
    ::FileTimeToSystemTime(&data.ftLastWriteTime, &time);
    return {data.cFileName,
            data.dwFileAttributes,
            {data.nFileSizeLow, time.wYear, time.wMonth, time.wDayOfWeek, time.wDay, time.wHour,
             time.wMinute, time.wSecond}};
}

}  // namespace

bool CrackUrl(const KTWCHAR* url, UrlParts& parts) {
    // Lengths of 1 with null pointers ask for pointers into the URL.
    URL_COMPONENTSW components = {};
    components.dwStructSize = sizeof components;
    components.dwHostNameLength = 1;
    components.dwUserNameLength = 1;
    components.dwPasswordLength = 1;
    components.dwUrlPathLength = 1;
    if (!::InternetCrackUrlW(url, 0, 0, &components))
        return false;
    parts.host = Part(components.lpszHostName, components.dwHostNameLength);
    parts.user = Part(components.lpszUserName, components.dwUserNameLength);
    parts.password = Part(components.lpszPassword, components.dwPasswordLength);
    parts.path = Part(components.lpszUrlPath, components.dwUrlPathLength);
    return true;
}

FtpSession::FtpSession(const KTWCHAR* host, const KTWCHAR* user, const KTWCHAR* password)
    : internet(::InternetOpenW(nullptr, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0)) {
    if (internet == nullptr)
        return;
    connection = ::InternetConnectW(Handle(internet), host, INTERNET_DEFAULT_FTP_PORT, user,
                                    password, INTERNET_SERVICE_FTP, 0, 0);
}

FtpSession::~FtpSession() {
    const DWORD error = ::GetLastError();
    if (connection != nullptr)
        ::InternetCloseHandle(Handle(connection));
    if (internet != nullptr)
        ::InternetCloseHandle(Handle(internet));
    ::SetLastError(error);
}

bool FtpSession::GetFile(const KTWCHAR* remote, const KTWCHAR* local) {
    return ::FtpGetFileW(Handle(connection), remote, local, FALSE, FILE_ATTRIBUTE_NORMAL,
                         kTransferFlags, 0) != 0;
}

bool FtpSession::PutFile(const KTWCHAR* local, const KTWCHAR* remote) {
    return ::FtpPutFileW(Handle(connection), local, remote, kTransferFlags, 0) != 0;
}

bool FtpSession::DeleteRemoteFile(const KTWCHAR* remote) {
    return ::FtpDeleteFileW(Handle(connection), remote) != 0;
}

bool FtpSession::MakeRemoteDirectory(const KTWCHAR* remote) {
    return ::FtpCreateDirectoryW(Handle(connection), remote) != 0;
}

bool FtpSession::MayStore(const KTWCHAR* remote) {
    const HINTERNET file =
        ::FtpOpenFileW(Handle(connection), remote, GENERIC_WRITE, kStoreFlags, 0);
    if (file == nullptr)
        return false;
    ::InternetCloseHandle(file);
    return true;
}

bool FtpSession::FindEntry(const KTWCHAR* pattern,
                           const std::function<bool(const KTWCHAR*)>& wanted, RemoteEntry& found) {
    WIN32_FIND_DATAW data;
    const HINTERNET search =
        ::FtpFindFirstFileW(Handle(connection), pattern, &data, kFromServerOnly, 0);
    if (search == nullptr)
        return false;
    bool match = wanted(data.cFileName);
    while (!match && ::InternetFindNextFileW(search, &data))
        match = wanted(data.cFileName);
    if (match)
        found = EntryOf(data);
    const DWORD error = ::GetLastError();
    ::InternetCloseHandle(search);
    ::SetLastError(error);
    return match;
}

}  // namespace kt::sys
