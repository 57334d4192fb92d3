// Fetching by the system's URL moniker into its download cache, any scheme
// the system knows. Natively there is no such cache and nothing is fetched.
#pragma once

#include "kticore/platform/Platform.h"

namespace kt::sys {

// URLDownloadToCacheFileW: the cache file's name into `name` of `size` units.
bool DownloadToCacheFile(const KTWCHAR* url, KTWCHAR* name, DWORD size);

}  // namespace kt::sys
