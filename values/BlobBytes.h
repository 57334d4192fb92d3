// The byte work that a blob and the blob kind of a variant share.
#pragma once

#include "kticore/values/Variant.h"

namespace kt {

// An array-new copy of `size` bytes; null for null data.
unsigned char* CopyBlobBytes(const unsigned char* data, ULONG size);

// Equal sizes and equal bytes over that size.
bool SameBlob(const tagKTBLOB& a, const tagKTBLOB& b);

}  // namespace kt
