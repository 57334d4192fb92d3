#include "streams/VariantForm.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "kticore/objects/Persist.h"
#include "streams/StreamRules.h"

namespace kt {

namespace {

// Memory for a counted payload grows with what arrives, starting at this.
constexpr ULONG kFirstChunk = 64 * 1024;

// Reads up to `byteCount` bytes into an array-new buffer of Units that has a
// zero unit behind the bytes read (a partial last unit is completed with
// zero bytes). `bytesRead` tells how many came.
template <class Unit>
Unit* ReadCounted(IXStream& stream, ULONG byteCount, ULONG& bytesRead) {
    const auto units = [](ULONG bytes) { return (static_cast<size_t>(bytes) + sizeof(Unit) - 1) / sizeof(Unit) + 1; };
    ULONG capacity = std::min(byteCount, kFirstChunk);
    Unit* buffer = new Unit[units(capacity)];
    bytesRead = 0;
    try {
        while (bytesRead < byteCount) {
            if (bytesRead == capacity) {
                const ULONG larger = capacity > byteCount - capacity ? byteCount : capacity * 2;
                Unit* grown = new Unit[units(larger)];
                std::memcpy(grown, buffer, bytesRead);
                delete[] buffer;
                buffer = grown;
                capacity = larger;
            }
            const unsigned got = stream.Read(reinterpret_cast<char*>(buffer) + bytesRead,
                                             capacity - bytesRead);
            if (got == 0)
                break;
            bytesRead += got;
        }
    } catch (...) {
        delete[] buffer;
        throw;
    }
    char* bytes = reinterpret_cast<char*>(buffer);
    std::memset(bytes + bytesRead, 0, units(bytesRead) * sizeof(Unit) - bytesRead);
    return buffer;
}

ULONG ReadLengthWord(IXStream& stream) {
    ULONG length = 0;
    stream.Read(&length, sizeof length);  // stays 0 at the end of the stream
    return length;
}

// A null text is stored as the empty text: the stored form always carries a
// terminator, which readers rely on.
template <class Unit>
void WriteText(IXStream& stream, const Unit* text) {
    static const Unit kEmpty[1] = {0};
    if (text == nullptr)
        text = kEmpty;
    const ULONG size = static_cast<ULONG>((std::char_traits<Unit>::length(text) + 1) * sizeof(Unit));
    stream.WriteDWord(size);
    stream.Write(text, size);
}

}  // namespace

unsigned StoredScalarSize(unsigned short kind) {
    // The payload of each kind, by its number; 0 where the payload is counted.
    static const unsigned char kSizes[] = {
        4,   // empty: bytes without meaning
        4, 1, 2, 4, 4, 4, 4, 8, 4,
        0,   // narrow text
        8, 16, 8, 16, 16, 32,
        0,   // blob
        0,   // object
        0,   // wide text
    };
    return kind < sizeof kSizes ? kSizes[kind] : 0;
}

void WriteStoredVariant(IXStream& stream, const tagKTVARIANT* value) {
    stream.Write(&value->vt, sizeof value->vt);
    switch (value->vt) {
    case KTVT_STR:
        WriteText(stream, value->pszVal);
        break;
    case KTVT_WSTR:
        WriteText(stream, value->pwszVal);
        break;
    case KTVT_BLOB:
        stream.WriteDWord(value->blobVal.size);
        if (value->blobVal.data != nullptr)
            stream.Write(value->blobVal.data, value->blobVal.size);
        break;
    case KTVT_OBJECT: {
        IPersistXStream* persist = nullptr;
        if (value->punkVal != nullptr)
            value->punkVal->QueryInterface(typeid(IPersistXStream), reinterpret_cast<void**>(&persist));
        try {
            WriteObjectToXStream(&stream, persist);
        } catch (...) {
            if (persist != nullptr)
                persist->Release();
            throw;
        }
        if (persist != nullptr)
            persist->Release();
        break;
    }
    default:
        if (StoredScalarSize(value->vt) != 0)
            stream.Write(&value->bVal, StoredScalarSize(value->vt));
        break;
    }
}

int ReadStoredVariant(IXStream& stream, tagKTVARIANT* value) {
    KTVariantClear(value);
    stream.Read(&value->vt, sizeof value->vt);  // stays 0 at the end of the stream
    if (value->vt > KTVT_WSTR)
        ThrowStreamError(stream, XE_BAD_DATA, XFILEOP_READ_WRITE);
    ULONG bytesRead = 0;
    switch (value->vt) {
    case KTVT_OBJECT:
        return ReadObjectFromXStream(&stream, &value->punkVal);
    case KTVT_STR:
        value->pszVal = ReadCounted<char>(stream, ReadLengthWord(stream), bytesRead);
        return bytesRead != 0;
    case KTVT_WSTR:
        value->pwszVal = ReadCounted<KTWCHAR>(stream, ReadLengthWord(stream), bytesRead);
        return bytesRead != 0;
    case KTVT_BLOB: {
        const ULONG size = stream.ReadDWord();
        value->blobVal.data = ReadCounted<unsigned char>(stream, size, bytesRead);
        value->blobVal.size = bytesRead;
        return bytesRead != 0;
    }
    default:
        return stream.Read(&value->bVal, StoredScalarSize(value->vt)) != 0;
    }
}

}  // namespace kt
