#include "streams/VariantForm.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "kticore/objects/Persist.h"
#include "streams/StreamRules.h"

namespace kt {

namespace {

// Units enough for `bytes` bytes and a zero unit behind them.
template <class Unit>
size_t UnitsFor(ULONG bytes) {
    return (static_cast<size_t>(bytes) + sizeof(Unit) - 1) / sizeof(Unit) + 1;
}

// Zeroes what lies behind the bytes read: a partial last unit is completed
// with zero bytes, and the text ends in a zero unit.
template <class Unit>
Unit* Terminated(std::unique_ptr<Unit[]> buffer, ULONG bytesRead) {
    char* bytes = reinterpret_cast<char*>(buffer.get());
    std::memset(bytes + bytesRead, 0, UnitsFor<Unit>(bytesRead) * sizeof(Unit) - bytesRead);
    return buffer.release();
}

// What the stream holds behind its position; nothing when it can not tell,
// as a stream that can not seek.
std::optional<ULONG> Remaining(IXStream& stream) {
    try {
        const unsigned position = stream.GetPosition();
        const unsigned length = stream.GetLength();
        return length > position ? length - position : 0;
    } catch (const CXFileException&) {
        return std::nullopt;
    }
}

// Memory for a payload of a stream that can not tell its length grows with
// what arrives, starting at this.
constexpr ULONG kFirstChunk = 64 * 1024;

template <class Unit>
std::unique_ptr<Unit[]> ReadInChunks(IXStream& stream, ULONG byteCount, ULONG& bytesRead) {
    ULONG capacity = std::min(byteCount, kFirstChunk);
    std::unique_ptr<Unit[]> buffer(new Unit[UnitsFor<Unit>(capacity)]);
    bytesRead = 0;
    while (bytesRead < byteCount) {
        if (bytesRead == capacity) {
            const ULONG larger = capacity > byteCount - capacity ? byteCount : capacity * 2;
            std::unique_ptr<Unit[]> grown(new Unit[UnitsFor<Unit>(larger)]);
            std::memcpy(grown.get(), buffer.get(), bytesRead);
            buffer = std::move(grown);
            capacity = larger;
        }
        const unsigned got =
            stream.Read(reinterpret_cast<char*>(buffer.get()) + bytesRead, capacity - bytesRead);
        if (got == 0)
            break;
        bytesRead += got;
    }
    return buffer;
}

// Reads up to `byteCount` bytes into an array-new buffer of Units with a zero
// unit behind the bytes read; `bytesRead` tells how many came. Where the
// stream says it holds the whole count, one Read takes it (as many questions
// to a progress sink as the count's one Read). Else the stream's figures are
// not trusted (it can not seek, or its 32-bit length and position are wrong,
// as past 4 GiB): the buffer grows with what arrives, so a damaged count never
// makes the reader allocate more than the stream holds.
template <class Unit>
Unit* ReadCounted(IXStream& stream, ULONG byteCount, ULONG& bytesRead) {
    const std::optional<ULONG> remaining = Remaining(stream);
    std::unique_ptr<Unit[]> buffer;
    if (remaining && *remaining >= byteCount) {
        buffer.reset(new Unit[UnitsFor<Unit>(byteCount)]);
        bytesRead = stream.Read(buffer.get(), byteCount);
    } else {
        buffer = ReadInChunks<Unit>(stream, byteCount, bytesRead);
    }
    return Terminated(std::move(buffer), bytesRead);
}

// A text or blob payload: its bytes with a zero unit behind them, their
// size, and whether the read gave anything.
template <class Unit>
struct Payload {
    Unit* units;  // array-new, for the variant to own
    ULONG size;
    bool anything;
};

template <class Unit>
Payload<Unit> ReadPayload(IXStream& stream, ReadAnswer answer, ULONG byteCount) {
    if (answer == ReadAnswer::kAllOrNothing) {
        // Such a Read can not tell how much came: the payload is as long as
        // its length word, and zero-filled, so text ends at its terminator.
        std::unique_ptr<Unit[]> units(new Unit[UnitsFor<Unit>(byteCount)]());
        const bool all = stream.Read(units.get(), byteCount) != 0;
        return {units.release(), byteCount, all};
    }
    ULONG bytesRead = 0;
    Unit* units = ReadCounted<Unit>(stream, byteCount, bytesRead);
    return {units, bytesRead, bytesRead != 0};
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

// A blob of a size without bytes is stored as that many zero bytes: the
// length word always counts the bytes that follow it, and a reader gets the
// zero-filled blob of that size.
void WriteBlob(IXStream& stream, const tagKTBLOB& blob) {
    stream.WriteDWord(blob.size);
    if (blob.data != nullptr) {
        stream.Write(blob.data, blob.size);
        return;
    }
    const KTBlob zeros(static_cast<unsigned long>(blob.size));
    stream.Write(zeros.data, zeros.size);
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
        WriteBlob(stream, value->blobVal);
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

int ReadStoredVariant(IXStream& stream, tagKTVARIANT* value, ReadAnswer answer,
                      unsigned short lastKind) {
    KTVariantClear(value);
    stream.Read(&value->vt, sizeof value->vt);  // stays 0 at the end of the stream
    if (value->vt > lastKind)
        ThrowStreamError(stream, XE_BAD_DATA, XFILEOP_READ_WRITE);
    switch (value->vt) {
    case KTVT_OBJECT:
        return ReadObjectFromXStream(&stream, &value->punkVal);
    case KTVT_STR: {
        const Payload<char> text = ReadPayload<char>(stream, answer, ReadLengthWord(stream));
        value->pszVal = text.units;
        return text.anything;
    }
    case KTVT_WSTR: {
        const Payload<KTWCHAR> text = ReadPayload<KTWCHAR>(stream, answer, ReadLengthWord(stream));
        value->pwszVal = text.units;
        return text.anything;
    }
    case KTVT_BLOB: {
        // Cut short on a stream that counts, the blob is as long as what
        // arrived: zeros up to the stored size would be memory that a
        // damaged length word asks for.
        const ULONG size = stream.ReadDWord();
        const Payload<unsigned char> blob = ReadPayload<unsigned char>(stream, answer, size);
        value->blobVal.data = blob.units;
        value->blobVal.size = blob.size;
        return blob.anything;
    }
    default:
        return stream.Read(&value->bVal, StoredScalarSize(value->vt)) != 0;
    }
}

}  // namespace kt
