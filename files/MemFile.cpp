#include "files/MemFile.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace kt {

namespace {

// Sizes are 32-bit and signed in the file's form.
constexpr std::uint64_t kLargestSize = std::numeric_limits<std::int32_t>::max();

}  // namespace

CMemFile::CMemFile(DWORD growBy) : heap(nullptr), growBy(growBy) {
    if (growBy == 0)
        throw CXException(XE_BAD_ARGUMENT);
    heap = new_MemoryHeap(0);
    if (heap == nullptr)
        throw CXMemException();
}

CMemFile::~CMemFile() { heap->Release(); }  // the block goes with its heap

DWORD CMemFile::Read(void* buffer, DWORD count) {
    if (buffer == nullptr)
        return 0;
    const DWORD copied = std::min(count, size - position);
    if (copied > 0)
        std::memcpy(buffer, data + position, copied);
    position += copied;
    return copied;
}

void CMemFile::CheckTypedRead(DWORD got, DWORD) {
    if (got == 0)
        throw CXException(XE_END_OF_FILE);
}

void CMemFile::Write(const void* buffer, DWORD count) {
    if (buffer == nullptr || count == 0)
        return;
    GrowTo(static_cast<std::uint64_t>(position) + count);
    std::memcpy(data + position, buffer, count);
    position += count;
}

void CMemFile::GrowTo(std::uint64_t needed) {
    if (needed <= size)
        return;
    const std::uint64_t steps = (needed - size + growBy - 1) / growBy;
    const std::uint64_t newSize = size + steps * growBy;
    if (newSize > kLargestSize)
        throw CXMemException();
    data = static_cast<char*>(data == nullptr ? heap->Alloc(newSize) : heap->Realloc(data, newSize));
    size = static_cast<DWORD>(newSize);
}

DWORD CMemFile::Seek(LONG offset, DWORD origin) {
    if (origin > 2)
        throw CXFileException(XE_BAD_ARGUMENT, GetName(), XFILEOP_SEEK);
    const std::int64_t base = origin == 0 ? 0 : origin == 1 ? position : size;
    position = static_cast<DWORD>(std::clamp<std::int64_t>(base + offset, 0, size));
    return position;
}

const KTWCHAR* CMemFile::GetName() { return KTW("MemFile"); }

}  // namespace kt

IXFile* kt_NewMemFile(DWORD growBy) { return new kt::CMemFile(growBy); }
