#include "streams/OleBasedStream.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "kticore/core/Exception.h"
#include "streams/OleStream.h"
#include "streams/VariantForm.h"

namespace kt {

COLEBasedXStream::COLEBasedXStream(IStream* stream) : stream(stream) {
    stream->AddRef();
    Seek(0, STREAM_SEEK_SET);
}

COLEBasedXStream::~COLEBasedXStream() {
    stream->Commit(0);
    stream->Release();
}

unsigned COLEBasedXStream::Read(void* buffer, unsigned size) {
    ULONG read = 0;
    const HRESULT status = stream->Read(buffer, size, &read);
    return status == S_OK && read == size;
}

void COLEBasedXStream::Write(const void* buffer, unsigned size) {
    ULONG written = 0;
    stream->Write(buffer, size, &written);
}

unsigned COLEBasedXStream::Seek(LONG offset, unsigned origin) {
    LARGE_INTEGER move;
    move.QuadPart = static_cast<ULONG>(offset);
    ULARGE_INTEGER position;
    position.QuadPart = 0;
    stream->Seek(move, origin, &position);
    return static_cast<unsigned>(position.QuadPart);
}

template <class Unit>
int COLEBasedXStream::ReadUntilZero(Unit* buffer, int maxChars) {
    for (int i = 0; i < maxChars; ++i) {
        buffer[i] = ReadValue<Unit>();
        if (buffer[i] == 0)
            return i + 1;
    }
    return std::max(maxChars, 0);
}

int COLEBasedXStream::ReadLineW(KTWCHAR* buffer, int maxChars) {
    return ReadUntilZero(buffer, maxChars);
}

int COLEBasedXStream::ReadLine(char* buffer, int maxChars) {
    return ReadUntilZero(buffer, maxChars);
}

int COLEBasedXStream::ReadVariant(tagKTVARIANT* value) {
    return ReadStoredVariant(*this, value, ReadAnswer::kAllOrNothing, KTVT_OBJECT);
}

void COLEBasedXStream::WriteVariant(const tagKTVARIANT* value) {
    if (value->vt == KTVT_WSTR)
        Write(&value->vt, sizeof value->vt);
    else
        WriteStoredVariant(*this, value);
}

void COLEBasedXStream::WriteStringW(const KTWCHAR* text) {
    if (text == nullptr)
        WriteWord(0);
    else
        Write(text,
              static_cast<unsigned>((std::char_traits<KTWCHAR>::length(text) + 1) * sizeof *text));
}

void COLEBasedXStream::WriteString(const char* text) {
    if (text == nullptr)
        WriteByte(0);
    else
        Write(text, static_cast<unsigned>(std::strlen(text) + 1));
}

}  // namespace kt

IXStream* new_StreamByOleStream(void* oleStream) {
    if (oleStream == nullptr)
        throw CXIFaceException(&typeid(IStream));
    return new kt::COLEBasedXStream(static_cast<IStream*>(oleStream));
}

// Only the two classes over an OLE stream have one to give; any other stream,
// the library's or a host's, gives null.
void* Stream_GetOLEStream(IXStream* stream) {
    IStream* ole = nullptr;
    if (auto* bridged = dynamic_cast<kt::COLEBasedXStream*>(stream))
        ole = bridged->OleStream();
    else if (auto* stored = dynamic_cast<kt::CStream*>(stream))
        ole = stored->OleStream();
    if (ole != nullptr)
        ole->AddRef();
    return ole;
}
