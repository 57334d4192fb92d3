// Natively there is no FTP client: URLs are taken apart as the internet
// client does, and every session fails as one to an unreachable server.
#include "platform/Ftp.h"

#include <algorithm>

namespace kt::sys {

// scheme://[user[:password]@]host[:port][path]
bool CrackUrl(const KTWCHAR* url, UrlParts& parts) {
    if (url == nullptr)
        return false;
    const WideString text(url);
    const size_t schemeEnd = text.find(KTW("://"));
    if (schemeEnd == WideString::npos || schemeEnd == 0)
        return false;
    const size_t authorityStart = schemeEnd + 3;
    const size_t pathStart = std::min(text.find(KTW('/'), authorityStart), text.size());
    WideString authority = text.substr(authorityStart, pathStart - authorityStart);
    parts = {};
    const size_t at = authority.rfind(KTW('@'));
    if (at != WideString::npos) {
        const WideString login = authority.substr(0, at);
        const size_t colon = login.find(KTW(':'));
        parts.user = login.substr(0, colon);
        if (colon != WideString::npos)
            parts.password = login.substr(colon + 1);
        authority.erase(0, at + 1);
    }
    parts.host = authority.substr(0, authority.find(KTW(':')));
    parts.path = text.substr(pathStart);
    return !parts.host.empty();
}

FtpSession::FtpSession(const KTWCHAR*, const KTWCHAR*, const KTWCHAR*) {
    SetLastFileError(kErrorCannotConnect);
}

FtpSession::~FtpSession() = default;

bool FtpSession::GetFile(const KTWCHAR*, const KTWCHAR*) { return false; }
bool FtpSession::PutFile(const KTWCHAR*, const KTWCHAR*) { return false; }
bool FtpSession::DeleteRemoteFile(const KTWCHAR*) { return false; }
bool FtpSession::MakeRemoteDirectory(const KTWCHAR*) { return false; }
bool FtpSession::MayStore(const KTWCHAR*) { return false; }

bool FtpSession::FindEntry(const KTWCHAR*, const std::function<bool(const KTWCHAR*)>&,
                           RemoteEntry&) {
    return false;
}

}  // namespace kt::sys
