// The download cache through the URL moniker.
#include "platform/UrlCache.h"

#include <urlmon.h>

namespace kt::sys {
namespace {

// The reserved argument's value belongs to the platform; this one is the
// value the library has always passed.
constexpr DWORD kReservedValue = 16;

}  // namespace

bool DownloadToCacheFile(const KTWCHAR* url, KTWCHAR* name, DWORD size) {
    return SUCCEEDED(::URLDownloadToCacheFileW(nullptr, url, name, size, kReservedValue, nullptr));
}

}  // namespace kt::sys
