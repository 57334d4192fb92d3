// The memory manager: the default heap, the lock of all heaps, the low-memory
// sink, the list of live heaps and the activity counters.
#pragma once

#include <atomic>

#include "kticore/core/Heap.h"
#include "kticore/core/List.h"
#include "platform/CriticalSection.h"

namespace kt {

class CHeap;

// Counts activity with plain loads and stores: increments from threads that
// hold no lock may be lost, which an indication of activity can bear.
class ActivityCounter {
public:
    void Add(unsigned long long amount) {
        value.store(value.load(std::memory_order_relaxed) + amount, std::memory_order_relaxed);
    }
    unsigned long long Get() const { return value.load(std::memory_order_relaxed); }

private:
    std::atomic<unsigned long long> value{0};
};

// Built before any other static object of the library and destroyed after
// them all; its destruction destroys every heap that is left, whatever its
// reference count.
class CMemoryManager {
public:
    CMemoryManager();
    ~CMemoryManager();
    CMemoryManager(const CMemoryManager&) = delete;
    CMemoryManager& operator=(const CMemoryManager&) = delete;

    // Asks the low-memory sink whether to try again. Call with memoryLock held.
    bool RetryAfterLowMemory(DWORD attempt) {
        return lowMemorySink != nullptr && lowMemorySink->OnLowMemory(attempt) != 0;
    }

    CHeap* defaultHeap = nullptr;
    // Covers heap creation and destruction, the sink and the list; the sink
    // runs with it held. Allocation takes it only to ask the sink.
    sys::CriticalSection memoryLock;
    ILowMemoryNotifySink* lowMemorySink = nullptr;
    COList heaps;
};

extern CMemoryManager memoryManager;
extern ActivityCounter coreBytes;  // bytes ever obtained, headers and heaps included
extern ActivityCounter coreOps;    // heap operations

}  // namespace kt
