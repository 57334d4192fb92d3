// CHeap, the one implementation of IHeap: a counted private heap of the
// system, listed by the memory manager.
#pragma once

#include "kticore/core/Heap.h"
#include "kticore/core/List.h"
#include "platform/SystemHeap.h"

namespace kt {

// A block is an 8-byte header holding its CHeap*, then what the caller sees.
// Every operation finds the owner in the header, so any IHeap can free a
// block of any other.
class CHeap final : public CKTUnknownImpl<IHeap>, public KT_LISTITEM {
public:
    // Throws CXMemException when the system will not give a heap and the
    // low-memory sink gives up. `size` only counts as activity.
    CHeap(size_t size, int isStatic);
    ~CHeap() override;

    // A static heap (the default one) ignores counting: both answer 1.
    ULONG AddRef() override;
    ULONG Release() override;

    void* Alloc(size_t size) override;
    void Free(void* block) override;
    void* Realloc(void* block, size_t newSize) override;
    size_t GetBlockSize(void* block) override;
    size_t GetHeaderSize(size_t size) override;

    sys::SystemHeap handle = nullptr;
    int isStatic;

private:
    // Asks the low-memory sink and tries again while it says so; throws
    // CXMemException when it gives up.
    void* AllocAfterLowMemory(size_t total);
};

}  // namespace kt
