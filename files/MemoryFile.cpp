// CXMemFile: the host's block of memory, read in place through a memory
// name. The block stays the host's; writing is accepted and ignored, so the
// object serves output as well.
#include "files/MemoryFile.h"

#include <algorithm>

#include "files/MemoryName.h"
#include "files/TypedFile.h"
#include "platform/GuardedCopy.h"

namespace kt {
namespace {

class CXMemFile final : public CTypedFile<IXOutFile> {
public:
    explicit CXMemFile(const KTWCHAR* memoryName) : block(ParseMemoryName(memoryName)) {
        const size_t length = std::min<size_t>(std::char_traits<KTWCHAR>::length(memoryName), 511);
        std::char_traits<KTWCHAR>::copy(name, memoryName, length);
        name[length] = 0;
    }

    DWORD Read(void* buffer, DWORD size) override {
        if (size == 0 || position >= block.size)
            return 0;
        const DWORD count = std::min(size, block.size - position);
        if (!sys::CopyGuarded(buffer, block.data + position, count))
            throw CXFileException(XE_IO_FAULT, name, XFILEOP_READ);
        position += count;
        return count;
    }
    void Write(const void*, DWORD) override {}
    DWORD Seek(LONG offset, DWORD origin) override {
        position = SeekTarget(offset, origin, position, block.size, true, XFILEOP_READ);
        return position;
    }
    int Flush() override { return 1; }
    const KTWCHAR* GetName() override { return name; }
    void Commit() override {}

private:
    MemoryBlock block;
    DWORD position = 0;
    KTWCHAR name[512];
};

}  // namespace

IXOutFile* NewMemoryFile(const KTWCHAR* name) { return new CXMemFile(name); }

}  // namespace kt
