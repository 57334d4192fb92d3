// The process's memory manager and the exported functions of the heaps.
#include "core/MemoryManager.h"

#include "core/MemoryHeap.h"
#include "kticore/core/Exception.h"

namespace kt {

// The first static object of the library to be built and the last to go, so
// that every other static object may allocate in its constructor and free in
// its destructor.
__attribute__((init_priority(101))) CMemoryManager memoryManager;
ActivityCounter coreBytes;
ActivityCounter coreOps;

CMemoryManager::CMemoryManager() {
    sys::EnableLowFragmentationForProcessHeaps();
    // The 4096 only counts as activity.
    defaultHeap = new CHeap(4096, 1);
}

CMemoryManager::~CMemoryManager() {
    for (KT_LISTITEM* link = heaps.first; link != nullptr;) {
        KT_LISTITEM* next = heaps.Next(link);
        delete static_cast<CHeap*>(link);
        link = next;
    }
}

}  // namespace kt

using kt::memoryManager;

int __core_activity = 0;

IHeap* Mem_DefaultHeap(unsigned long long) {
    kt::sys::ScopedLock lock(memoryManager.memoryLock);
    return memoryManager.defaultHeap;
}

IHeap* new_MemoryHeap(unsigned long long initialSize) {
    return new kt::CHeap(static_cast<size_t>(initialSize), 0);
}

void Mem_SetLowMemoryNotifySink(ILowMemoryNotifySink* sink) {
    kt::sys::ScopedLock lock(memoryManager.memoryLock);
    if (memoryManager.lowMemorySink != nullptr)
        throw CXException(XE_BAD_ARGUMENT);
    memoryManager.lowMemorySink = sink;
}

void Get_CoreActivity(unsigned long long* bytes, unsigned int* ops) {
    *bytes = kt::coreBytes.Get();
    *ops = static_cast<unsigned int>(kt::coreOps.Get());
}
