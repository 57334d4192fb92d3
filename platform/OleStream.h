// The OLE stream as the library uses it: Read, Write, Seek, Commit and the
// reference count of the published IStream interface. On Windows that is the
// platform's own; natively a declaration of the same operations stands in,
// and the seam can make a stream in memory on both.
#pragma once

#include "kticore/platform/Platform.h"

#if defined(_WIN32)
#    include <objidl.h>
#else
#    include "platform/posix/OleStreamTypes.h"
#endif

namespace kt::sys {

// An empty OLE stream in memory with one reference (CreateStreamOnHGlobal on
// Windows); null when the system refuses.
IStream* NewMemoryOleStream();

}  // namespace kt::sys
