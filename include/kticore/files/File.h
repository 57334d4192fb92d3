// Files, reached by name. One entry point looks at the name and decides what
// stands behind the interface: a block of the host's memory named by
// "fmem::address,size", a URL, or a file on disk, which is mapped and never
// read or written by system calls. Names are wide, at most 511 characters.
#pragma once

#include "kticore/core/Exception.h"
#include "kticore/core/Unknown.h"

// Open flags.
enum : int {
    FIO_WRITE = 0x0001,      // open for writing; clear is read-only
    FIO_KEEP = 0x0002,       // with FIO_WRITE: keep the file and its length
    FIO_RANDOM = 0x0100,     // random access; clear is sequential
    FIO_TEMPORARY = 0x8000,  // with FIO_WRITE: deleted by the system when closed
};

// What Fio_GetFileInfo tells of a file. The time is the last write, in UTC as
// the file system keeps it.
struct FioFileInfo {
    DWORD size;  // low 32 bits
    DWORD second;
    DWORD minute;
    DWORD hour;
    DWORD day;        // of the month
    DWORD dayOfWeek;  // 0 is Sunday
    DWORD month;      // 1 to 12
    DWORD year;
};

// A file with a position and a length. Typed values are copied as they lie in
// memory; typed reads throw XE_END_OF_FILE when bytes are missing.
struct IXFile : IKTUnknown {
    // Up to `size` bytes; the count copied, 0 at the end of the file.
    virtual DWORD Read(void* buffer, DWORD size) = 0;
    // Writes at the position; the length grows to the position.
    virtual void Write(const void* buffer, DWORD size) = 0;
    // Origin 0 start, 1 position, 2 length. A negative result is 0; past the
    // length of a file open for reading throws XE_BAD_SEEK.
    virtual DWORD Seek(LONG offset, DWORD origin) = 0;
    virtual DWORD GetPosition() = 0;
    // Writes the mapped data back; 1 when there is nothing to write.
    virtual int Flush() = 0;
    virtual BYTE ReadByte() = 0;
    virtual WORD ReadWord() = 0;
    virtual DWORD ReadDWord() = 0;
    virtual double ReadDouble() = 0;
    virtual void WriteByte(BYTE value) = 0;
    virtual void WriteWord(WORD value) = 0;
    virtual void WriteDWord(DWORD value) = 0;
    virtual void WriteDouble(double value) = 0;
    // The text and its terminator, no length in front.
    virtual void WriteStringW(const KTWCHAR* text) = 0;
    virtual void WriteString(const char* text) = 0;
    // One line: the count of units before the line feed, which stays in the
    // buffer when there is room. The buffer needs maxChars + 1 units. An
    // empty line and the end of the file both return 0.
    virtual int ReadLineW(KTWCHAR* buffer, int maxChars) = 0;
    virtual int ReadLine(char* buffer, int maxChars) = 0;
    virtual DWORD GetLength() = 0;
    virtual const KTWCHAR* GetName() = 0;

protected:
    ~IXFile() = default;
};

// A file that replaces its target only at Commit; released without Commit,
// the work is thrown away and the target is untouched.
struct IXOutFile : IXFile {
    virtual void Commit() = 0;

protected:
    ~IXOutFile() = default;
};

// Opens a memory name, a URL or a local file (a null name makes a new
// temporary file). Failures throw CXFileException.
KTCORE_API IXFile* Fio_Open(const KTWCHAR* name, int flags);
// Opens for writing (FIO_WRITE is implied) into a temporary file beside the
// target. The name must not be null.
KTCORE_API IXOutFile* Fio_OpenOut(const KTWCHAR* name, int flags);
// 1 for a name that begins with "fmem::" in any case.
KTCORE_API int Fio_IsMemFile(const KTWCHAR* name);
