#include "streams/TypedStream.h"

#include <cstring>
#include <string>

#include "streams/VariantForm.h"

namespace kt {

template <class Unit>
int CTypedStream::ReadLineOf(Unit* buffer, int maxChars) {
    if (maxChars <= 0) {
        buffer[0] = 0;
        return 0;
    }
    int i = 0;
    while (i < maxChars) {
        Unit unit = 0;
        if (Read(&unit, sizeof unit) == 0)
            throw CXEofException();
        buffer[i] = unit;
        if (unit == '\n' || unit == 0)
            break;
        ++i;
    }
    if (lineEnd == LineEnd::kBehindLast) {
        // A line that ran out at maxChars leaves one unit unwritten in the
        // contract's layout; it is cleared too, so the text is never open.
        if (i == maxChars)
            buffer[i] = 0;
        ++i;
    } else if (i < maxChars - 1) {
        ++i;  // the line feed stays in the text
    }
    buffer[i] = 0;
    return i;
}

int CTypedStream::ReadLineW(KTWCHAR* buffer, int maxChars) { return ReadLineOf(buffer, maxChars); }

int CTypedStream::ReadLine(char* buffer, int maxChars) { return ReadLineOf(buffer, maxChars); }

int CTypedStream::ReadVariant(tagKTVARIANT* value) { return ReadStoredVariant(*this, value); }

void CTypedStream::WriteVariant(const tagKTVARIANT* value) { WriteStoredVariant(*this, value); }

void CTypedStream::WriteStringW(const KTWCHAR* text) {
    Write(text, static_cast<unsigned>((std::char_traits<KTWCHAR>::length(text) + 1) * sizeof *text));
}

void CTypedStream::WriteString(const char* text) {
    Write(text, static_cast<unsigned>(std::strlen(text) + 1));
}

}  // namespace kt
