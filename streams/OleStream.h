// CStream: an IXStream over an OLE stream, as the storages hand them out. It
// holds one reference to the OLE stream and passes every operation to it;
// where the position may stand (also past the end) is the OLE stream's rule.
#pragma once

#include <cstdint>

#include "platform/OleStream.h"
#include "streams/TypedStream.h"

namespace kt {

class CStream : public CTypedStream {
public:
    // `name` is kept for messages, cut to 63 bytes.
    CStream(const char* name, IStream* stream);
    ~CStream() override;

    unsigned Read(void* buffer, unsigned size) override;
    void Write(const void* buffer, unsigned size) override;
    unsigned Seek(LONG offset, unsigned origin) override;
    unsigned GetLength() override;
    const char* GetName() override { return name; }

    IStream* OleStream() const { return stream; }

private:
    std::uint64_t SeekTo(std::int64_t offset, DWORD origin);

    IStream* stream;
    char name[64];
};

}  // namespace kt

// A CStream made outside the library, for code that holds an OLE stream of
// its own and the library's tests; the stream gets one more reference.
KTCORE_API IXStream* kt_NewStreamOnOleStream(const char* name, IStream* stream);
