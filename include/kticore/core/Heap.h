// Private counted heaps. Plain new and delete are not replaced; a heap is for a
// subsystem or host module that wants memory of its own, with a way to be asked
// for memory when the system has run out, and counters of allocation activity.
#pragma once

#include <cstddef>

#include "kticore/core/Unknown.h"

struct IHeap : IKTUnknown {
    // A zero-filled block; never null: throws CXMemException when no memory
    // can be had and the low-memory sink gives up.
    virtual void* Alloc(size_t size) = 0;
    // Gives a block back to the heap that made it, whichever heap is asked.
    virtual void Free(void* block) = 0;
    // A new block with the old content (the rest zero); the old block is freed.
    // The block always moves, also when it shrinks.
    virtual void* Realloc(void* block, size_t newSize) = 0;
    // The size that was asked for at Alloc.
    virtual size_t GetBlockSize(void* block) = 0;
    // What a block costs beyond its size: always 8, whatever the argument.
    virtual size_t GetHeaderSize(size_t size) = 0;

protected:
    ~IHeap() = default;
};

// Implemented by the host. The library keeps the bare pointer and calls only
// OnLowMemory, with memory's lock held, on the thread that asked for memory:
// `attempt` counts 0, 1, 2... within one allocation. Nonzero means try again.
struct ILowMemoryNotifySink {
    virtual int OnLowMemory(DWORD attempt) = 0;

protected:
    ~ILowMemoryNotifySink() = default;
};

// The process-wide default heap. No reference is added; counting on it does
// nothing. The argument has no effect.
KTCORE_API IHeap* Mem_DefaultHeap(unsigned long long reserved);

// A new heap with one reference; its last Release frees every block in it at
// once. The argument only counts as activity.
KTCORE_API IHeap* new_MemoryHeap(unsigned long long initialSize);

// Installs the sink once for the process; any second call throws CXException
// with XE_BAD_ARGUMENT and keeps the first sink.
KTCORE_API void Mem_SetLowMemoryNotifySink(ILowMemoryNotifySink* sink);

// Running totals: bytes ever obtained (blocks with their header, and heaps) and
// the low 32 bits of the number of heap operations. They measure activity, not
// what is in use.
KTCORE_API void Get_CoreActivity(unsigned long long* bytes, unsigned int* ops);

// Exists for the host modules; the library neither reads nor writes it.
extern "C" KTCORE_API int __core_activity;
