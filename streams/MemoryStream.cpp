#include "streams/MemoryStream.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <new>

namespace kt {

void CMemBlockBuffer::Assign(const void* source, ULONG newSize) {
    // The source may lie in the block: it goes after the copy.
    unsigned char* newData = nullptr;
    if (newSize != 0) {
        newData = static_cast<unsigned char*>(sys::GrowBlock(nullptr, 0, newSize));
        if (newData == nullptr)
            throw std::bad_alloc();
        if (source != nullptr)
            std::memcpy(newData, source, newSize);
    }
    sys::FreeGrownBlock(data, capacity);
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
    if (position >= block.size)
        return 0;
    size = std::min<unsigned>(size, block.size - position);
    std::memmove(buffer, block.data + position, size);  // the buffer may lie in the block
    position += size;
    AskProgress();
    return size;
}

void CMemStream::Write(const void* buffer, unsigned size) {
    const std::uint64_t end = std::uint64_t{position} + size;
    // What is written may come from the block itself, which may move.
    const auto* source = static_cast<const unsigned char*>(buffer);
    const std::less<const unsigned char*> before;
    const bool fromBlock = block.data != nullptr && !before(source, block.data) &&
                           before(source, block.data + block.capacity);
    const size_t sourceOffset = fromBlock ? static_cast<size_t>(source - block.data) : 0;
    block.Reserve(end);
    if (fromBlock)
        source = block.data + sourceOffset;
    // A position left behind the end by SetBlockData leaves a gap: cleared,
    // so no undefined byte is ever read back.
    if (position > block.size)
        std::memset(block.data + block.size, 0, position - block.size);
    if (size != 0)
        std::memmove(block.data + position, source, size);
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

void CMemStream::ThrowIfCancelled() {
    if (progress->IsCancelled() != 0)
        throw CXException(XE_CANCELLED);
}

}  // namespace kt

IXStream* new_StreamOnMemory() { return new kt::CMemStream(); }

IXStream* new_StreamOnMemory(KTIFC::IProgress* progress) { return new kt::CMemStream(progress); }
