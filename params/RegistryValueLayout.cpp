#include "params/RegistryValueLayout.h"

#include <cstring>

#include "values/BlobBytes.h"

namespace kt::params {
namespace {

using Reader = void (*)(const BYTE* bytes, DWORD size, tagKTVARIANT* value);
using Writer = void (*)(const tagKTVARIANT& value, DWORD size, BYTE* bytes);

// Every kind but the blob keeps its value at the start of the value area.
void ReadPlain(const BYTE* bytes, DWORD size, tagKTVARIANT* value) { std::memcpy(&value->dblVal, bytes, size); }
void WritePlain(const tagKTVARIANT& value, DWORD size, BYTE* bytes) { std::memcpy(bytes, &value.dblVal, size); }

ULONG U32At(const BYTE* bytes) {
    ULONG count;
    std::memcpy(&count, bytes, sizeof count);
    return count;
}

void ReadBlob(const BYTE* bytes, DWORD size, tagKTVARIANT* value) {
    value->blobVal.size = U32At(bytes);
    value->blobVal.data = CopyBlobBytes(bytes + size, value->blobVal.size);
}
void WriteBlob(const tagKTVARIANT& value, DWORD size, BYTE* bytes) {
    std::memcpy(bytes, &value.blobVal.size, size);
    if (value.blobVal.size != 0)
        std::memcpy(bytes + size, value.blobVal.data, value.blobVal.size);
}

struct KindRow {
    unsigned short kind;
    // Bytes behind the kind number; for the blob those of its size field.
    DWORD size;
    // The size field is followed by as many bytes as it counts.
    bool counted;
    Reader read;
    Writer write;
};

constexpr KindRow kRows[] = {
    {KTVT_EMPTY, 0, false, ReadPlain, WritePlain},
    {KTVT_BOOL, 4, false, ReadPlain, WritePlain},
    {KTVT_BYTE, 1, false, ReadPlain, WritePlain},
    {KTVT_WORD, 2, false, ReadPlain, WritePlain},
    {KTVT_ULONG, 4, false, ReadPlain, WritePlain},
    {KTVT_INT, 4, false, ReadPlain, WritePlain},
    {KTVT_UINT, 4, false, ReadPlain, WritePlain},
    {KTVT_LONG, 4, false, ReadPlain, WritePlain},
    {KTVT_DOUBLE, 8, false, ReadPlain, WritePlain},
    {KTVT_FLOAT, 4, false, ReadPlain, WritePlain},
    {KTVT_SIZE, 8, false, ReadPlain, WritePlain},
    {KTVT_RSIZE, 16, false, ReadPlain, WritePlain},
    {KTVT_POINT, 8, false, ReadPlain, WritePlain},
    {KTVT_RPOINT, 16, false, ReadPlain, WritePlain},
    {KTVT_RECT, 16, false, ReadPlain, WritePlain},
    {KTVT_RRECT, 32, false, ReadPlain, WritePlain},
    {KTVT_BLOB, 4, true, ReadBlob, WriteBlob},
};

const KindRow* FindRow(ULONG kind) {
    for (const KindRow& row : kRows)
        if (row.kind == kind)
            return &row;
    return nullptr;
}

}  // namespace

bool EncodeBinaryValue(const tagKTVARIANT& value, std::vector<BYTE>& data) {
    const KindRow* row = FindRow(value.vt);
    if (row == nullptr)
        return false;
    data.resize(kKindBytes + row->size + (row->counted ? value.blobVal.size : 0));
    const ULONG kind = value.vt;
    std::memcpy(data.data(), &kind, kKindBytes);
    row->write(value, row->size, data.data() + kKindBytes);
    return true;
}

// Data from elsewhere is not trusted: its size must be exactly what its kind
// takes, or it is no value of ours.
bool DecodeBinaryValue(const BYTE* data, DWORD size, tagKTVARIANT* value) {
    if (size < kKindBytes)
        return false;
    const KindRow* row = FindRow(U32At(data));
    const BYTE* bytes = data + kKindBytes;
    const DWORD available = size - kKindBytes;
    if (row == nullptr || available < row->size)
        return false;
    const unsigned long long wanted = row->size + (row->counted ? 0ull + U32At(bytes) : 0ull);
    if (available != wanted)
        return false;
    value->vt = row->kind;
    row->read(bytes, row->size, value);
    return true;
}

}  // namespace kt::params
