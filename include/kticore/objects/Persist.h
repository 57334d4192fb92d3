// Objects stored on a stream by class name. The stored form is the class
// name with its terminator, a 32-bit length and the object's own bytes, so a
// reader that does not know the class still keeps the bytes (a proxy object
// does) and writes them back unchanged.
#pragma once

#include "kticore/core/Unknown.h"
#include "kticore/streams/Stream.h"

struct IPersistX : IKTUnknown {
    // The name under which the class is registered; owned by the object.
    virtual const char* GetClassName() = 0;
    // The number of bytes that Save writes.
    virtual ULONG GetSize() = 0;

protected:
    ~IPersistX() = default;
};

struct IPersistXStream : IPersistX {
    // Reads the payload at the stream's position and leaves the stream right
    // behind it.
    virtual void Load(IXStream* stream) = 0;
    virtual void Save(IXStream* stream) = 0;

protected:
    ~IPersistXStream() = default;
};

// Writes the stored form of `object` at the stream's position (one 0 byte for
// null) and returns 1. The length is measured, so the stream must be seekable.
KTCORE_API int WriteObjectToXStream(IXStream* stream, IPersistXStream* object);
// Reads one stored object; `*object` gets a counted reference, or null and
// the result 0 for the stored form of no object. A class that is not
// registered comes back as a proxy that keeps its bytes.
KTCORE_API int ReadObjectFromXStream(IXStream* stream, IKTUnknown** object);
// Steps over one stored object; returns the position where it began.
KTCORE_API unsigned long SkipObjectToXStream(IXStream* stream);
// What WriteObjectToXStream will write: 1 for null, else the name's length +
// GetSize + 5.
KTCORE_API unsigned long SizeOfObject(IPersistXStream* object);
