#include "streams/StreamRules.h"

#include <algorithm>
#include <cstdint>

namespace kt {

void ThrowStreamError(IXStream& stream, DWORD code, DWORD operation) {
    const CXStringW name(stream.GetName());
    throw CXFileException(code, name, operation);
}

void CheckSeekOrigin(IXStream& stream, unsigned origin) {
    if (origin > 2)
        ThrowStreamError(stream, XE_BAD_ARGUMENT, XFILEOP_SEEK);
}

unsigned ClampedSeek(IXStream& stream, LONG offset, unsigned origin, unsigned position,
                     unsigned length) {
    CheckSeekOrigin(stream, origin);
    const std::int64_t base = origin == 0 ? 0 : origin == 1 ? position : length;
    return static_cast<unsigned>(std::clamp<std::int64_t>(base + offset, 0, length));
}

}  // namespace kt
