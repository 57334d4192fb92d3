// Rules that the stream classes share: how a failure is reported, and how a
// stream that can not stand past its end seeks.
#pragma once

#include "kticore/core/Exception.h"
#include "kticore/streams/Stream.h"

namespace kt {

// A CXFileException named by the stream's GetName, widened.
[[noreturn]] void ThrowStreamError(IXStream& stream, DWORD code, DWORD operation);

// Origin 0, 1 or 2; anything else throws XE_BAD_ARGUMENT for a seek.
void CheckSeekOrigin(IXStream& stream, unsigned origin);

// The new position of a seek that is kept between 0 and `length`.
unsigned ClampedSeek(IXStream& stream, LONG offset, unsigned origin, unsigned position,
                     unsigned length);

}  // namespace kt
