// The stored form of a variant, a file format shared by every stream: the
// 16-bit kind, then its payload. Text and blobs carry a 32-bit byte count,
// text includes its terminator, objects are in their stored form, and every
// other kind is the first bytes of the value area.
#pragma once

#include "kticore/streams/Stream.h"

namespace kt {

// The payload bytes of a kind stored from the value area; 0 for the kinds
// with a payload of their own and for unknown kinds.
unsigned StoredScalarSize(unsigned short kind);

void WriteStoredVariant(IXStream& stream, const tagKTVARIANT* value);

// How a stream reads stored variants: the payload's bytes through a read
// that counts them, and the last kind it takes (a higher one is bad data).
struct VariantReading {
    unsigned (*countedRead)(IXStream& stream, void* buffer, unsigned size);
    unsigned short lastKind;
};

// 0 when nothing was there to read. A damaged count never makes the reader
// allocate more than the stream holds: a text or blob cut short holds what
// was there, and the blob's size is the number of bytes that came.
// Reads through the stream's own Read and takes every kind.
int ReadStoredVariant(IXStream& stream, tagKTVARIANT* value);
int ReadStoredVariant(IXStream& stream, tagKTVARIANT* value, const VariantReading& reading);

}  // namespace kt
