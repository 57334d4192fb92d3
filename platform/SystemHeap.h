// The operating system's private heaps, as the library's heaps use them: a
// growable heap whose destruction frees every block in it, zero-filled blocks,
// and the size of a block. Win32 gives these directly (HeapCreate and its
// kin); the POSIX side builds the same contract over malloc.
#pragma once

#include <cstddef>

namespace kt::sys {

using SystemHeap = void*;

// A growable heap with the low-fragmentation setting; null when the system has
// no memory for it.
SystemHeap CreateSystemHeap();
void DestroySystemHeap(SystemHeap heap);

// A zero-filled block, or null when none can be had. Thread-safe.
void* AllocZeroed(SystemHeap heap, size_t size);
// Thread-safe.
void FreeBlock(SystemHeap heap, void* block);
// The size that was asked for; thread-safe.
size_t BlockSize(SystemHeap heap, const void* block);

// Turns the low-fragmentation setting on for every heap the process has;
// answers how many heaps took it.
unsigned EnableLowFragmentationForProcessHeaps();

}  // namespace kt::sys
