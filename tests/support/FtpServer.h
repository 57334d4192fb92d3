// The real FTP server that the ctest fixture "ftp_server" runs on
// 127.0.0.1:21 for a test (tests/support/ftp-server.py): its directory on the
// disk, which comes in KT_FTP_DIR and is reached through Wine's drive Z:,
// and URLs of its user "kt".
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/support/WideText.h"

namespace kt::test {

inline const KTWCHAR* const kFtpServer = KTW("127.0.0.1");

inline std::filesystem::path FtpServerDirectory() {
    const char* unixPath = std::getenv("KT_FTP_DIR");
    std::string path = std::string("Z:") + (unixPath != nullptr ? unixPath : "/nonexistent");
    return std::filesystem::path(path).make_preferred();
}

// What the server serves at the top of its URLs.
inline std::filesystem::path FtpServerRoot() { return FtpServerDirectory() / "root"; }

inline WideString FtpUrl(const WideString& remote, const WideString& password = KTW("secret"),
                         const WideString& host = kFtpServer) {
    return KTW("ftp://kt:") + password + KTW("@") + host + KTW("/") + remote;
}

}  // namespace kt::test
