// A file that lives in a growing block of memory of its own, the scratch file
// of the parameter text functions. Its length is the size of its block, which
// grows in whole steps: what is written is followed by zero bytes up to the
// next step.
#pragma once

#include <cstdint>

#include "files/TypedFile.h"
#include "kticore/core/Heap.h"

namespace kt {

class CMemFile : public CTypedFile<IXFile> {
public:
    // Throws XE_BAD_ARGUMENT for a `growBy` of 0, XE_NO_MEMORY when no heap
    // can be had.
    explicit CMemFile(DWORD growBy);
    ~CMemFile() override;
    CMemFile(const CMemFile&) = delete;
    CMemFile& operator=(const CMemFile&) = delete;

    DWORD Read(void* buffer, DWORD count) override;
    void Write(const void* buffer, DWORD count) override;
    // Origin 0, 1 or 2; the result is held between 0 and the length.
    DWORD Seek(LONG offset, DWORD origin) override;
    int Flush() override { return 1; }
    DWORD GetLength() override { return size; }
    const KTWCHAR* GetName() override;

protected:
    // A value cut short holds the bytes that came: only a read of nothing is
    // the end of the buffer.
    void CheckTypedRead(DWORD got, DWORD wanted) override;

private:
    void GrowTo(std::uint64_t needed);

    IHeap* heap;
    char* data = nullptr;
    DWORD size = 0;
    DWORD position = 0;
    DWORD growBy;
};

}  // namespace kt

// A CMemFile made outside the library, for the library's tests.
KTCORE_API IXFile* kt_NewMemFile(DWORD growBy);
