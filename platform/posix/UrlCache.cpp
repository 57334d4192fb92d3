// Natively there is no URL moniker and no download cache.
#include "platform/UrlCache.h"

namespace kt::sys {

bool DownloadToCacheFile(const KTWCHAR*, KTWCHAR*, DWORD) { return false; }

}  // namespace kt::sys
