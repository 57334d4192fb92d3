#include "streams/OleStream.h"

#include <cstring>

#include "streams/StreamRules.h"

namespace kt {

CStream::CStream(const char* name, IStream* stream) : stream(stream) {
    std::strncpy(this->name, name != nullptr ? name : "", sizeof this->name - 1);
    this->name[sizeof this->name - 1] = 0;
    stream->AddRef();
}

CStream::~CStream() { stream->Release(); }

unsigned CStream::Read(void* buffer, unsigned size) {
    ULONG read = 0;
    const HRESULT status = stream->Read(buffer, size, &read);
    if (status < 0)
        ThrowStreamError(*this, XErrorFromHResult(static_cast<DWORD>(status)), XFILEOP_READ_WRITE);
    return read;
}

void CStream::Write(const void* buffer, unsigned size) {
    ULONG written = 0;
    const HRESULT status = stream->Write(buffer, size, &written);
    if (status < 0)
        ThrowStreamError(*this, XErrorFromHResult(static_cast<DWORD>(status)), XFILEOP_READ_WRITE);
}

unsigned CStream::Seek(LONG offset, unsigned origin) {
    CheckSeekOrigin(*this, origin);
    return static_cast<unsigned>(SeekTo(offset, origin));
}

unsigned CStream::GetLength() {
    // The position is restored with its full width, also past 2 GiB.
    const std::uint64_t position = SeekTo(0, STREAM_SEEK_CUR);
    const std::uint64_t end = SeekTo(0, STREAM_SEEK_END);
    SeekTo(static_cast<std::int64_t>(position), STREAM_SEEK_SET);
    return static_cast<unsigned>(end);
}

std::uint64_t CStream::SeekTo(std::int64_t offset, DWORD origin) {
    LARGE_INTEGER move;
    move.QuadPart = offset;
    ULARGE_INTEGER newPosition;
    newPosition.QuadPart = 0;
    const HRESULT status = stream->Seek(move, origin, &newPosition);
    if (status < 0)
        ThrowStreamError(*this, XErrorFromHResult(static_cast<DWORD>(status)), XFILEOP_SEEK);
    return newPosition.QuadPart;
}

}  // namespace kt

IXStream* kt_NewStreamOnOleStream(const char* name, IStream* stream) {
    return new kt::CStream(name, stream);
}
