// The library's byte stream: sequential and seekable, with typed reads and
// writes and the stored form of a variant. Every multi-byte value is written
// as it lies in memory (little-endian), with no padding and no tags.
#pragma once

#include "kticore/core/Progress.h"
#include "kticore/core/Unknown.h"
#include "kticore/values/Variant.h"

struct IXStream : IKTUnknown {
    // Up to `size` bytes from the position; the count read, 0 at the end.
    virtual unsigned Read(void* buffer, unsigned size) = 0;
    virtual void Write(const void* buffer, unsigned size) = 0;
    // Origin 0 from the start, 1 from the position, 2 from the end; returns
    // the new position. Another origin throws XE_BAD_ARGUMENT.
    virtual unsigned Seek(LONG offset, unsigned origin) = 0;
    virtual unsigned GetPosition() = 0;

    // Typed reads throw CXEofException only when nothing at all was left.
    virtual unsigned char ReadByte() = 0;
    virtual unsigned short ReadWord() = 0;
    virtual ULONG ReadDWord() = 0;
    virtual double ReadDouble() = 0;
    // One line, its line feed kept; the buffer needs room for one unit more
    // than `maxChars` (two more on a memory stream). Throws CXEofException
    // at the end of the stream, also after a part of a line.
    virtual int ReadLineW(KTWCHAR* buffer, int maxChars) = 0;
    virtual int ReadLine(char* buffer, int maxChars) = 0;
    // Reads one stored variant into `value` (cleared first); 0 when nothing
    // was there to read. An unknown type code throws XE_BAD_DATA.
    virtual int ReadVariant(tagKTVARIANT* value) = 0;
    virtual void WriteVariant(const tagKTVARIANT* value) = 0;

    virtual void WriteByte(unsigned char value) = 0;
    virtual void WriteWord(unsigned short value) = 0;
    virtual void WriteDWord(ULONG value) = 0;
    virtual void WriteDouble(double value) = 0;
    // The text and its terminator, with no length in front; not null.
    virtual void WriteStringW(const KTWCHAR* text) = 0;
    virtual void WriteString(const char* text) = 0;

    virtual unsigned GetLength() = 0;
    // The stream's name, for messages.
    virtual const char* GetName() = 0;

protected:
    ~IXStream() = default;
};

// The block under a memory stream, without a copy. The pointer stays valid
// until the stream next grows its block.
struct IMemBlock : IKTUnknown {
    virtual ULONG GetBlockSize() = 0;
    // Null while no block has been allocated.
    virtual void* GetBlockData() = 0;
    // Replaces the block by an exact copy of `size` bytes of `source` (or
    // `size` undefined bytes for a null source); the position stays.
    virtual void SetBlockData(const void* source, ULONG size) = 0;

protected:
    ~IMemBlock() = default;
};

// A growing stream in memory. With a progress sink (which gets a reference)
// every Read and Write asks it whether to go on, and throws XE_CANCELLED,
// with the data of that call already moved, when it says no.
KTCORE_API IXStream* new_StreamOnMemory();
KTCORE_API IXStream* new_StreamOnMemory(KTIFC::IProgress* progress);

// Swallows what is written and reads as zeros; never at its end.
KTCORE_API IXStream* new_EmptyStream();

// An IXStream over an OLE IStream of the host's (an IStream*), which gets one
// more reference and is put at its start; it is committed when the stream
// goes. This stream throws nothing of what the OLE stream reports: Read
// answers 1 when all of it came and 0 otherwise, the position and the length
// read as 0, and a wide text is stored as its kind alone. A null `oleStream`
// throws CXIFaceException; after that only ReadVariant throws: a stored wide
// text or a higher kind is CXFileException XE_BAD_DATA, and a stored object
// throws what reading objects throws.
KTCORE_API IXStream* new_StreamByOleStream(void* oleStream);
// The IStream* under a stream over an OLE stream (one that a storage gave or
// new_StreamByOleStream made), with a reference for the caller; null for
// any other stream.
KTCORE_API void* Stream_GetOLEStream(IXStream* stream);
