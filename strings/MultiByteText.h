// Narrow text as characters of the current multibyte code page: a lead byte
// and its trail byte are one character, every other byte is one. A lead byte
// right before the terminator counts as a character of its own, so that no
// walk ever steps over the terminator of cut-off text.
//
// A character code holds a double-byte character as lead << 8 | trail and a
// single byte as itself.
#pragma once

#include <climits>

#include "kticore/platform/Platform.h"
#include "platform/MultiByte.h"

namespace kt::mbcs {

// No code page has a lead byte below 0x80: ASCII text needs no question.
inline bool IsLead(char byte) {
    return static_cast<unsigned char>(byte) >= 0x80 &&
           sys::IsLeadByte(static_cast<unsigned char>(byte));
}

// Bytes of the character at `p`: 0 at the terminator, else 1 or 2.
inline unsigned CharSize(const char* p) {
    if (*p == 0)
        return 0;
    return IsLead(*p) && p[1] != 0 ? 2 : 1;
}

inline const char* Next(const char* p) { return p + CharSize(p); }

// The character before `p`, or null when `p` is `start`.
const char* Previous(const char* start, const char* p);

unsigned Length(const char* text);
// Bytes of the first `count` characters, stopping at the terminator.
unsigned ByteCount(const char* text, unsigned count);

KTWCHAR CodeAt(const char* p);
bool IsDoubleByteCode(KTWCHAR code);
// Writes the bytes of `code`, lead byte first; returns their number.
unsigned Encode(KTWCHAR code, char* out);

// As strchr and strrchr: the code 0 finds the terminator.
const char* FindChar(const char* text, KTWCHAR code);
const char* FindLastChar(const char* text, KTWCHAR code);
const char* FindSubstring(const char* text, const char* what);
const char* FindOneOf(const char* text, const char* set);
const char* FindLastOneOf(const char* text, const char* set);

// Compares the first `count` characters by character code: -1, 0 or 1.
int Compare(const char* a, const char* b, unsigned count = UINT_MAX);
// As _mbsicmp, or _mbsnicmp for a `count` below UINT_MAX: the sign tells.
int CompareIgnoringCase(const char* a, const char* b, unsigned count = UINT_MAX);

// _mbsupr and _mbslwr in place; the byte behind the terminator must be
// writable.
void ToUpper(char* text);
void ToLower(char* text);

}  // namespace kt::mbcs
