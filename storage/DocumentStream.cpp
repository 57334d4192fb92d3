#include "storage/DocumentStream.h"

#include "kticore/core/Exception.h"

namespace kt {

namespace {

// One reference on `object` for the caller.
template <class I>
int Give(I* object, I** out) {
    if (out == nullptr)
        throw CXException(XE_BAD_ARGUMENT);
    object->AddRef();
    *out = object;
    return 1;
}

}  // namespace

CIXDocStream::CIXDocStream(IXStream* stream, CIXDocStorage* docStorage, int flags)
    : stream(stream), docStorage(docStorage), flags(flags) {
    stream->AddRef();
    docStorage->AddRef();
}

CIXDocStream::~CIXDocStream() {
    registered.RemoveAll();
    docStorage->Release();
    stream->Release();
}

int CIXDocStream::QueryInterface(const type_info& wanted, void** out) {
    if (InternalQueryInterface(wanted, out))
        return 1;
    IKTUnknown* part = nullptr;
    if (wanted == typeid(IRegisterIface))
        part = static_cast<IRegisterIface*>(this);
    else if (wanted == typeid(IXStorage) || wanted == typeid(KTIFC::IProgress))
        return docStorage->QueryInterface(wanted, out);
    else if (wanted == typeid(IDocStrorageInfo))
        part = static_cast<IDocStrorageInfo*>(this);
    else
        return registered.Answer(wanted, out);
    if (out != nullptr) {
        AddRef();
        *out = part;
    }
    return 1;
}

// Write belongs with the reads: the bytes are in the stream when the cancel
// comes. The typed writes ask first, so a cancelled one writes nothing.
void CIXDocStream::Write(const void* buffer, unsigned size) {
    stream->Write(buffer, size);
    docStorage->CheckCancelled();
}

void CIXDocStream::WriteVariant(const tagKTVARIANT* value) {
    docStorage->CheckCancelled();
    stream->WriteVariant(value);
}

void CIXDocStream::WriteByte(unsigned char value) {
    docStorage->CheckCancelled();
    stream->WriteByte(value);
}

void CIXDocStream::WriteWord(unsigned short value) {
    docStorage->CheckCancelled();
    stream->WriteWord(value);
}

void CIXDocStream::WriteDWord(ULONG value) {
    docStorage->CheckCancelled();
    stream->WriteDWord(value);
}

void CIXDocStream::WriteDouble(double value) {
    docStorage->CheckCancelled();
    stream->WriteDouble(value);
}

void CIXDocStream::WriteStringW(const KTWCHAR* text) {
    docStorage->CheckCancelled();
    stream->WriteStringW(text);
}

void CIXDocStream::WriteString(const char* text) {
    docStorage->CheckCancelled();
    stream->WriteString(text);
}

int CIXDocStream::GetBaseStorage(IXStorage** out) { return Give(docStorage->BaseStorage(), out); }

int CIXDocStream::GetDocStorage(IXStorage** out) { return Give<IXStorage>(docStorage, out); }

int CIXDocStream::GetBaseStream(IXStream** out) { return Give(stream, out); }

int CIXDocStream::RegisterInterface(IKTUnknown* object, const type_info& type, int addRef) {
    return registered.Register(object, type, addRef);
}

}  // namespace kt

int new_CIXDocStream(IXStorage* docStorage, IXStream* stream, IXStream** out, int flags) {
    auto* document = dynamic_cast<kt::CIXDocStorage*>(docStorage);
    if (document == nullptr)
        throw CXIFaceException(&typeid(IXStorage));
    if (stream == nullptr)
        throw CXIFaceException(&typeid(IXStream));
    if (out == nullptr)
        throw CXException(XE_BAD_ARGUMENT);
    *out = new kt::CIXDocStream(stream, document, flags);
    return 1;
}
