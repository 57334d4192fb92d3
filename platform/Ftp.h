// FTP as the URL layer needs it: the platform's internet client (WinInet's
// Internet... and Ftp... calls) with one session per operation, binary
// transfers and nothing taken from or put into the system's cache. Failures
// leave the client's error for LastFileError. Natively there is no such
// client: every session fails as one to a server that can not be reached.
#pragma once

#include <functional>
#include <string>

#include "platform/FileSystem.h"

namespace kt::sys {

using WideString = std::basic_string<KTWCHAR>;

// The internet client's errors that the URL layer names.
constexpr DWORD kErrorInternetExtended = 12003;  // the server's reply says no
constexpr DWORD kErrorLoginFailure = 12015;
constexpr DWORD kErrorCannotConnect = 12029;

// InternetCrackUrlW: the parts of a URL as they stand in it, not unescaped;
// an absent part is empty. False for text the client can not take apart.
struct UrlParts {
    WideString host;
    WideString user;
    WideString password;
    WideString path;
};
bool CrackUrl(const KTWCHAR* url, UrlParts& parts);

// What a server's listing tells of one entry.
struct RemoteEntry {
    WideString name;
    DWORD attributes;
    FoundFile facts;  // the low 32 bits of the size, the last write time as listed
};

// One logged-in connection to port 21 of a host (InternetOpenW and
// InternetConnectW). Closing it keeps the error of the last failed call.
class FtpSession {
public:
    FtpSession(const KTWCHAR* host, const KTWCHAR* user, const KTWCHAR* password);
    ~FtpSession();
    FtpSession(const FtpSession&) = delete;
    FtpSession& operator=(const FtpSession&) = delete;

    bool IsOpen() const { return connection != nullptr; }

    // FtpGetFileW: overwrites `local`; true when the file is complete.
    bool GetFile(const KTWCHAR* remote, const KTWCHAR* local);
    // FtpPutFileW: true when the file is complete.
    bool PutFile(const KTWCHAR* local, const KTWCHAR* remote);
    bool DeleteRemoteFile(const KTWCHAR* remote);
    // One level: a missing parent fails.
    bool MakeRemoteDirectory(const KTWCHAR* remote);
    // FtpOpenFileW for writing: whether the server lets the client store
    // there. The file that this makes is closed at once and stays.
    bool MayStore(const KTWCHAR* remote);
    // FtpFindFirstFileW with `pattern`, then InternetFindNextFileW, until
    // `wanted` accepts a name: true with that entry in `found`.
    bool FindEntry(const KTWCHAR* pattern, const std::function<bool(const KTWCHAR*)>& wanted,
                   RemoteEntry& found);

private:
    // Unused natively, where no session is ever opened.
    [[maybe_unused]] void* internet = nullptr;
    [[maybe_unused]] void* connection = nullptr;
};

}  // namespace kt::sys
