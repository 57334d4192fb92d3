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

// How a stream's own Read answers: with the bytes that came, or only
// whether all of them came (a bridge over a host's stream).
enum class ReadAnswer { kByteCount, kAllOrNothing };

// 0 when nothing was there to read; a reader whose Read answers all or
// nothing also gives 0 for a payload cut short, and takes the text and blob
// payloads as long as their length words say, zeros where nothing came.
// Otherwise a damaged count never makes the reader allocate more than the
// stream holds: a text or blob cut short holds what was there, and the
// blob's size is the number of bytes that came. A kind above `lastKind` is
// bad data.
int ReadStoredVariant(IXStream& stream, tagKTVARIANT* value,
                      ReadAnswer answer = ReadAnswer::kByteCount,
                      unsigned short lastKind = KTVT_WSTR);

}  // namespace kt
