#include "files/UrlSession.h"

#include "kticore/files/FileUtilities.h"
#include "kticore/files/UrlFiles.h"

int Fio_UrlCrack(const KTWCHAR* url, CXStringW& host, CXStringW& user, CXStringW& password,
                 CXStringW& path) {
    if (!Fio_PathIsURL(url))
        return 0;
    host = user = password = path = KTW("");
    kt::sys::UrlParts parts;
    if (!kt::sys::CrackUrl(url, parts))
        return 0;
    host = parts.host.c_str();
    user = parts.user.c_str();
    password = parts.password.c_str();
    path = parts.path.c_str();
    return 1;
}

namespace kt {

CUrlSession::CUrlSession(const KTWCHAR* url) {
    CXStringW host, user, password;
    if (Fio_UrlCrack(url, host, user, password, path))
        session.emplace(host, user, password);
}

}  // namespace kt
