#include "translation/ByteBuffer.h"

#include <cstring>

#include "kticore/core/Exception.h"

namespace kt {

CByteBuffer::CByteBuffer(DWORD capacity, DWORD growStep, IHeap* heap)
    : data(static_cast<BYTE*>(heap->Alloc(capacity))), capacity(capacity), growStep(growStep), heap(heap) {}

CByteBuffer::~CByteBuffer() { heap->Free(data); }

void CByteBuffer::Append(const void* bytes, size_t count) {
    if (count != 0)
        std::memcpy(Grow(count), bytes, count);
}

void CByteBuffer::AppendZeros(size_t count) {
    if (count != 0)
        std::memset(Grow(count), 0, count);
}

void CByteBuffer::PadTo(DWORD alignment) { AppendZeros((alignment - size % alignment) % alignment); }

// Room for `count` more bytes behind the last one; `size` counts them.
BYTE* CByteBuffer::Grow(size_t count) {
    if (count > 0xFFFFFFFFu - size)
        throw CXMemException();
    const DWORD needed = static_cast<DWORD>(size + count);
    if (needed > capacity) {
        data = static_cast<BYTE*>(heap->Realloc(data, needed));
        capacity = needed;
    }
    BYTE* place = data + size;
    size = needed;
    return place;
}

}  // namespace kt
