// The platform's compound files (OLE structured storage), as the storage
// layer makes and opens them. Windows only: natively the storage layer is
// not built. The IStorage objects themselves are called directly.
#pragma once

#include "platform/OleStream.h"

namespace kt::sys {

// StgCreateDocfile; with STGM_CREATE in `mode` an existing file is replaced.
HRESULT CreateCompoundFile(const KTWCHAR* path, DWORD mode, IStorage** out);
// StgOpenStorage; a file that is no compound file fails.
HRESULT OpenCompoundFile(const KTWCHAR* path, DWORD mode, IStorage** out);
// A compound file on a growing block of global memory that goes with it.
HRESULT CreateCompoundFileInMemory(DWORD mode, IStorage** out);
// Frees what the platform's task allocator gave, such as an element's name.
void FreeTaskMemory(void* memory);

// CoInitialize(null) on the calling thread; true when it is to be left.
bool JoinComApartment();
void LeaveComApartment();

}  // namespace kt::sys
