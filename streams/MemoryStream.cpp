#include "streams/MemoryStream.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace kt {

std::unique_ptr<unsigned char[]> CMemBlockBuffer::Reserve(std::uint64_t needed) {
    if (needed <= capacity)
        return nullptr;
    // Positions and sizes of a stream are 32-bit: a block can not outgrow
    // them, and the last step is cut to fit.
    if (needed > 0xFFFFFFFFu)
        throw std::bad_alloc();
    const std::uint64_t grown = (needed / growBy + 1) * growBy + capacity;
    const ULONG newCapacity = static_cast<ULONG>(std::min<std::uint64_t>(grown, 0xFFFFFFFFu));
    unsigned char* newData = new unsigned char[newCapacity];
    if (size != 0)
        std::memcpy(newData, data, size);
    std::unique_ptr<unsigned char[]> old(data);
    data = newData;
    capacity = newCapacity;
    return old;
}

void CMemBlockBuffer::Assign(const void* source, ULONG newSize) {
    unsigned char* newData = new unsigned char[newSize];
    if (source != nullptr && newSize != 0)
        std::memcpy(newData, source, newSize);
    delete[] data;
    data = newData;
    capacity = newSize;
    size = newSize;
    // An empty block keeps a step, or its next growth would divide by zero.
    growBy = newSize != 0 ? newSize : kGrowBy;
}

CMemStream::CMemStream(KTIFC::IProgress* progress)
    : CTypedStream(LineEnd::kBehindLast), progress(progress) {
    if (progress != nullptr)
        progress->AddRef();
}

CMemStream::CMemStream(const void* source, ULONG size) : CTypedStream(LineEnd::kBehindLast) {
    block.Assign(source, size);
}

CMemStream::~CMemStream() {
    if (progress != nullptr)
        progress->Release();
}

int CMemStream::InternalQueryInterface(const type_info& wanted, void** out) {
    if (wanted != typeid(IMemBlock))
        return CTypedStream::InternalQueryInterface(wanted, out);
    if (out != nullptr) {
        *out = static_cast<IMemBlock*>(this);
        AddRef();
    }
    return 1;
}

unsigned CMemStream::Read(void* buffer, unsigned size) {
    if (position >= GetLength())
        return 0;
    size = std::min<unsigned>(size, GetLength() - position);
    std::memmove(buffer, block.data + position, size);  // the buffer may lie in the block
    position += size;
    AskProgress();
    return size;
}

void CMemStream::Write(const void* buffer, unsigned size) {
    const std::uint64_t end = std::uint64_t{position} + size;
    const std::unique_ptr<unsigned char[]> replaced = block.Reserve(end);
    // A position left behind the end by SetBlockData leaves a gap: cleared,
    // so no undefined byte is ever read back.
    if (position > block.size)
        std::memset(block.data + block.size, 0, position - block.size);
    if (size != 0)
        std::memmove(block.data + position, buffer, size);
    position = static_cast<ULONG>(end);
    if (position > block.size)
        block.size = position;
    AskProgress();
}

unsigned CMemStream::Seek(LONG offset, unsigned origin) {
    position = ClampedSeek(*this, offset, origin, position, GetLength());
    return position;
}

void* CMemStream::GetBlockData() {
    return block.capacity != 0 ? block.data : nullptr;
}

void CMemStream::SetBlockData(const void* source, ULONG size) { block.Assign(source, size); }

void CMemStream::AskProgress() {
    if (progress != nullptr && progress->IsCancelled() != 0)
        throw CXException(XE_CANCELLED);
}

}  // namespace kt

IXStream* new_StreamOnMemory() { return new kt::CMemStream(); }

IXStream* new_StreamOnMemory(KTIFC::IProgress* progress) { return new kt::CMemStream(progress); }
