// CXFile: a file on disk that is never read or written by system calls. It
// maps the file and moves one view of fixed size over it: twice the
// allocation granularity, or a larger window for a sequential reader. A file
// open for writing grows through its mapping, a view at a time, and is cut to
// its length at the last Release.
#pragma once

#include <cstdint>

#include "files/TypedFile.h"
#include "platform/FileSystem.h"

namespace kt {

// The view of a file open only for reading, and not for random access.
// Nothing a reader sees depends on its size, and moving the view is what a
// sequential read pays for: a large window moves seldom. A random reader
// keeps the small view, which costs less to map at each jump. A multiple of
// every allocation granularity.
constexpr DWORD kReadWindowBytes = 8u << 20;

class CXFile final : public CTypedFile<IXFile> {
public:
    // A null name makes a new temporary file ("KTPR" in the temporary
    // directory). Failures throw CXFileException.
    CXFile(const KTWCHAR* name, int flags);
    ~CXFile() override;

    DWORD Read(void* buffer, DWORD size) override;
    void Write(const void* buffer, DWORD size) override;
    DWORD Seek(LONG offset, DWORD origin) override;
    DWORD GetPosition() override { return position; }
    DWORD GetLength() override { return length; }
    int Flush() override;
    const KTWCHAR* GetName() override { return name; }

    // Inside the view a typed read is one move and a line one scan; at the
    // edges of the view and the file they take the general way.
    DWORD ReadDWord() override;
    int ReadLine(char* buffer, int maxChars) override;

private:
    void Close() override;
    // Makes the view cover the position.
    void MoveView();
    DWORD MappedBytes() const;
    // Counts viewBytes again, after the view or the length changed.
    void CountViewBytes();
    // The bytes from the position to the end of the view or of the file.
    DWORD BytesInView() const {
        const DWORD offset = position - viewOffset;  // wraps when the position lies before the view
        return offset < viewBytes ? viewBytes - offset : 0;
    }
    // Whether `size` bytes from the position lie in the view, in one test: a
    // position before the view wraps to more than any view holds, since the
    // view ends inside a 32-bit file.
    bool InView(DWORD size) const { return std::uint64_t{position - viewOffset} + size <= viewBytes; }
    DWORD ReadDWordAtEdge();
    [[noreturn]] void FailOpen(DWORD win32Error);
    // Copies between the view and the caller: typed values in one move. A
    // fault in the view (a file cut short by another process, a view that
    // may not be written) throws XE_IO_FAULT.
    void Copy(void* to, const void* from, DWORD size);
    [[noreturn]] void FailCopy();

    sys::FileHandle file = sys::kNoFile;
    sys::MappingHandle mapping = sys::kNoMapping;
    DWORD position = 0;
    DWORD length = 0;
    unsigned char* view = nullptr;
    DWORD viewOffset = 0;
    // The bytes of the file in the view, from its start; 0 without a view.
    // Kept, so that a typed read asks one question of the view.
    DWORD viewBytes = 0;
    DWORD viewSize;
    DWORD flags;
    DWORD access;  // XFILEOP_READ or XFILEOP_WRITE
    KTWCHAR name[512] = {};
};

}  // namespace kt
