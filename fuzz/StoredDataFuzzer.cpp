// Reads arbitrary bytes as stored variants and objects, from a memory stream
// and from a stream over an OLE stream, the way a document reader meets a
// damaged file. Every read must end in a value or in one of the library's
// exceptions; whatever was read must write back to bytes that read back to
// the same value and write again to the same bytes.
#include <cstdint>
#include <cstring>
#include <vector>

#include "fuzz/FuzzInput.h"
#include "fuzz/FuzzStreams.h"
#include "kticore/core/Exception.h"
#include "kticore/objects/Persist.h"
#include "kticore/streams/Stream.h"

namespace {

using kt::fuzz::Check;
using kt::fuzz::StreamHolding;
using Bytes = std::vector<std::uint8_t>;

Bytes Content(IXStream* stream) {
    Bytes bytes(stream->GetLength());
    stream->Seek(0, 0);
    if (!bytes.empty())
        Check(stream->Read(bytes.data(), static_cast<unsigned>(bytes.size())) == bytes.size());
    return bytes;
}

// Kinds 8 and 9 compare exactly, and a stored NaN is not equal to itself.
bool IsNaN(const tagKTVARIANT& value) {
    return (value.vt == KTVT_DOUBLE && value.dblVal != value.dblVal) ||
           (value.vt == KTVT_FLOAT && value.fltVal != value.fltVal);
}

// A class name is read as a line of at most 259 characters: a longer one, or
// one that holds a line feed, can not be read back from what is written.
bool HasUnreadableClassName(const tagKTVARIANT& value) {
    IPersistX* persist = nullptr;
    if (value.vt != KTVT_OBJECT || value.punkVal == nullptr ||
        !value.punkVal->QueryInterface(typeid(IPersistX), reinterpret_cast<void**>(&persist)))
        return false;
    const char* name = persist->GetClassName();
    const bool unreadable = std::strchr(name, '\n') != nullptr || std::strlen(name) >= 260;
    persist->Release();
    return unreadable;
}

// Writes a value that was read, reads it back and writes it again: the two
// writings agree, and so do the values where the kind can be compared.
void CheckRewrite(const CKTVariant& value) {
    if (HasUnreadableClassName(value))
        return;
    IXStream* first = new_StreamOnMemory();
    first->WriteVariant(&value);
    const Bytes written = Content(first);
    first->Seek(0, 0);
    CKTVariant again;
    first->ReadVariant(&again);
    Check(first->GetPosition() == written.size());
    if (value.vt != KTVT_OBJECT && !IsNaN(value))
        Check(again == value);
    IXStream* second = new_StreamOnMemory();
    second->WriteVariant(&again);
    Check(Content(second) == written);
    second->Release();
    first->Release();
}

enum class Reading { kVariants, kObjects, kSkips };

void ReadAll(IXStream* stream, Reading reading) {
    unsigned last = stream->GetPosition();
    for (;;) {
        try {
            if (reading == Reading::kVariants) {
                CKTVariant value;
                stream->ReadVariant(&value);
                CheckRewrite(value);
            } else if (reading == Reading::kObjects) {
                IKTUnknown* object = nullptr;
                if (ReadObjectFromXStream(stream, &object)) {
                    Check(object != nullptr);
                    CheckRewrite(CKTVariant(object));
                    object->Release();
                }
            } else {
                SkipObjectToXStream(stream);
            }
        } catch (const CXException&) {
            return;
        }
        const unsigned position = stream->GetPosition();
        if (position <= last || position >= stream->GetLength())
            return;
        last = position;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    const std::uint8_t mode = data[0];
    IXStream* stream = StreamHolding(data + 1, size - 1, (mode & 4) != 0);
    ReadAll(stream, static_cast<Reading>((mode & 3) % 3));
    stream->Release();
    return 0;
}
