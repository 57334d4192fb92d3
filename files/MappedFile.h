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
    DWORD GetPosition() override { return Position(); }
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
    // Puts `mapped` (at `offset`, or null for no view) in place of the view;
    // the position stays.
    void PlaceView(unsigned char* mapped, DWORD offset);
    // Counts viewBytes again, after the view or the length changed.
    void CountViewBytes();
    DWORD Position() const { return static_cast<DWORD>(cursor - viewBase); }
    unsigned char* AtPosition() const { return reinterpret_cast<unsigned char*>(cursor); }
    void SetPosition(DWORD to) {
        cursor = viewBase + to;
        AimDWordReads();
    }
    // Forward moves keep the bound of typed reads right: it only asks that
    // the position not lie before the view.
    void Advance(DWORD bytes) { cursor += bytes; }
    void AimDWordReads();
    // The bytes from the position to the end of the view or of the file.
    DWORD BytesInView() const {
        const DWORD offset = Position() - viewOffset;  // wraps when the position lies before the view
        return offset < viewBytes ? viewBytes - offset : 0;
    }
    DWORD ReadDWordAtEdge();
    [[noreturn]] void FailOpen(DWORD win32Error);
    // Copies between the view and the caller: typed values in one move. A
    // fault in the view (a file cut short by another process, a view that
    // may not be written) throws XE_IO_FAULT.
    void Copy(void* to, const void* from, DWORD size);
    [[noreturn]] void FailCopy();

    sys::FileHandle file = sys::kNoFile;
    sys::MappingHandle mapping = sys::kNoMapping;
    DWORD length = 0;
    unsigned char* view = nullptr;
    DWORD viewOffset = 0;
    // The bytes of the file in the view, from its start; 0 without a view.
    DWORD viewBytes = 0;
    // The position is kept as an address, so that a typed read asks one
    // question and moves one field: the address where the file's first byte
    // would lie in the view, and the position's address from there.
    std::uintptr_t viewBase = 0;
    std::uintptr_t cursor = 0;
    // A DWORD read at a cursor below it lies in the view and in the file; 0
    // while the position lies before the view, or the view holds less.
    std::uintptr_t dwordReadEnd = 0;
    DWORD viewSize;
    DWORD flags;
    DWORD access;  // XFILEOP_READ or XFILEOP_WRITE
    KTWCHAR name[512] = {};
};

}  // namespace kt
