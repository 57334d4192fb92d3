#include <algorithm>
#include <cstring>

#include "values/BlobBytes.h"

namespace kt {

unsigned char* CopyBlobBytes(const unsigned char* data, ULONG size) {
    if (data == nullptr)
        return nullptr;
    unsigned char* copy = new unsigned char[size];
    if (size != 0)
        std::memcpy(copy, data, size);
    return copy;
}

bool AllZero(const void* data, unsigned long size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    return std::all_of(bytes, bytes + size, [](unsigned char byte) { return byte == 0; });
}

// A blob with a size and no bytes counts as that many zeros, as it is
// stored: it equals what it reads back as.
bool SameBlob(const tagKTBLOB& a, const tagKTBLOB& b) {
    if (a.size != b.size)
        return false;
    if (a.size == 0 || a.data == b.data)
        return true;
    if (a.data == nullptr || b.data == nullptr)
        return AllZero(a.data != nullptr ? a.data : b.data, a.size);
    return std::memcmp(a.data, b.data, a.size) == 0;
}

}  // namespace kt

KTBlob::KTBlob() : tagKTBLOB{0, nullptr} {}

KTBlob::KTBlob(unsigned long size)
    : tagKTBLOB{static_cast<ULONG>(size), new unsigned char[static_cast<ULONG>(size)]()} {}

KTBlob::KTBlob(const tagKTBLOB& source)
    : tagKTBLOB{source.size, kt::CopyBlobBytes(source.data, source.size)} {}

KTBlob::KTBlob(const tagKTBLOB* source) : KTBlob(*source) {}

KTBlob::KTBlob(const KTBlob& source) : KTBlob(static_cast<const tagKTBLOB&>(source)) {}

KTBlob::~KTBlob() { delete[] data; }

KTBlob& KTBlob::operator=(const tagKTBLOB* source) {
    // Copy first: the source may be this blob itself.
    unsigned char* copy = kt::CopyBlobBytes(source->data, source->size);
    const ULONG newSize = source->size;
    Clear();
    size = newSize;
    data = copy;
    return *this;
}

KTBlob& KTBlob::operator=(const tagKTBLOB& source) { return *this = &source; }

KTBlob& KTBlob::operator=(const KTBlob& source) {
    return *this = static_cast<const tagKTBLOB*>(&source);
}

void KTBlob::Clear() {
    delete[] data;
    data = nullptr;
    size = 0;
}

int KTBlob::operator==(const tagKTBLOB& other) const { return kt::SameBlob(*this, other); }

int KTBlob::operator==(const tagKTBLOB* other) const { return *this == *other; }
