// The growing output of a rewrite: bytes in a block of a heap.
#pragma once

#include "kticore/core/Heap.h"

namespace kt {

class CByteBuffer {
public:
    // `growStep` is kept with the buffer and does not drive growth: an append
    // that does not fit moves the bytes to a block of exactly the size needed.
    CByteBuffer(DWORD capacity, DWORD growStep, IHeap* heap = Mem_DefaultHeap(0));
    ~CByteBuffer();
    CByteBuffer(const CByteBuffer&) = delete;
    CByteBuffer& operator=(const CByteBuffer&) = delete;

    // Throws CXMemException when the heap has no block of the size needed,
    // or the size would not fit 32 bits.
    void Append(const void* bytes, size_t count);
    void AppendZeros(size_t count);
    // Zero bytes up to the next multiple of `alignment` from the start.
    void PadTo(DWORD alignment);
    // Forgets the bytes, keeps the block.
    void Clear() { size = 0; }

    BYTE* Data() { return data; }
    DWORD Size() const { return size; }
    DWORD Capacity() const { return capacity; }
    DWORD GrowStep() const { return growStep; }

private:
    BYTE* Grow(size_t count);

    BYTE* data;
    DWORD size = 0;
    DWORD capacity;
    DWORD growStep;
    IHeap* heap;
};

}  // namespace kt
