#include "platform/OleStorage.h"

namespace kt::sys {
namespace {

// The block a memory storage starts with; it grows as the storage does.
constexpr SIZE_T kMemoryStorageStart = 100000;

}  // namespace

HRESULT CreateCompoundFile(const KTWCHAR* path, DWORD mode, IStorage** out) {
    return StgCreateDocfile(path, mode, 0, out);
}

HRESULT OpenCompoundFile(const KTWCHAR* path, DWORD mode, IStorage** out) {
    return StgOpenStorage(path, nullptr, mode, nullptr, 0, out);
}

HRESULT CreateCompoundFileInMemory(DWORD mode, IStorage** out) {
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, kMemoryStorageStart);
    if (block == nullptr)
        return STG_E_INSUFFICIENTMEMORY;
    ILockBytes* bytes = nullptr;
    const HRESULT made = CreateILockBytesOnHGlobal(block, TRUE, &bytes);
    if (FAILED(made)) {
        GlobalFree(block);
        return made;
    }
    // The storage holds the byte array from here; the block goes with it.
    const HRESULT status = StgCreateDocfileOnILockBytes(bytes, mode, 0, out);
    bytes->Release();
    return status;
}

void FreeTaskMemory(void* memory) { CoTaskMemFree(memory); }

bool JoinComApartment() { return SUCCEEDED(CoInitialize(nullptr)); }

void LeaveComApartment() { CoUninitialize(); }

}  // namespace kt::sys
