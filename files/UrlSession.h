// The frame of every FTP operation on a URL: the URL taken apart, a session
// with port 21 of its host as its user, closed when the operation is done.
// The port a URL names is not used.
#pragma once

#include <optional>

#include "kticore/strings/XStringW.h"
#include "platform/Ftp.h"

namespace kt {

class CUrlSession {
public:
    explicit CUrlSession(const KTWCHAR* url);

    // False for a null name, one that is not a URL, or a server that did
    // not take the login; the system's last error tells why.
    bool IsOpen() const { return session.has_value() && session->IsOpen(); }
    // The remote path, with its leading slash.
    const CXStringW& Path() const { return path; }
    sys::FtpSession* operator->() { return &*session; }

private:
    CXStringW path;
    std::optional<sys::FtpSession> session;
};

}  // namespace kt
