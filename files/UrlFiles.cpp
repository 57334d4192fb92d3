#include "files/UrlFiles.h"

#include "kticore/files/FileUtilities.h"

namespace kt {
namespace {

// ERROR_INTERNET_CANNOT_CONNECT, which has no failure code of its own.
constexpr DWORD kCannotConnect = 12029;

[[noreturn]] void Unreachable(const KTWCHAR* url, DWORD operation) {
    throw CXFileException(XErrorFromWin32(kCannotConnect), url, operation);
}

}  // namespace

IXFile* OpenUrlFile(const KTWCHAR* url, int) { Unreachable(url, XFILEOP_OPEN); }

IXOutFile* OpenUrlOutFile(const KTWCHAR* url, int) { Unreachable(url, XFILEOP_OPEN); }

void DeleteUrlFile(const KTWCHAR*) {}

void CreateUrlDirectory(const KTWCHAR* url) { Unreachable(url, XFILEOP_CREATE_DIRECTORY); }

void GetUrlFileInfo(const KTWCHAR* url, FioFileInfo*) { Unreachable(url, XFILEOP_URL_INFO); }

int IsWritableUrl(const KTWCHAR*) { return 0; }

}  // namespace kt

int Fio_DownloadToFile(const KTWCHAR*, const KTWCHAR*) { return 0; }
