// The Win32 implementation of the runtime's case functions: the runtime's
// own, which follow its locale and multibyte code page.
#include "platform/RuntimeCase.h"

#include <mbstring.h>
#include <wchar.h>

namespace kt::sys {

namespace {

unsigned char* Bytes(char* text) { return reinterpret_cast<unsigned char*>(text); }
const unsigned char* Bytes(const char* text) {
    return reinterpret_cast<const unsigned char*>(text);
}

}  // namespace

void UpperMultiByte(char* text) { _mbsupr(Bytes(text)); }

void LowerMultiByte(char* text) { _mbslwr(Bytes(text)); }

int CompareMultiByteIgnoringCase(const char* a, const char* b) {
    return _mbsicmp(Bytes(a), Bytes(b));
}

int CompareMultiByteIgnoringCase(const char* a, const char* b, std::size_t count) {
    return _mbsnicmp(Bytes(a), Bytes(b), count);
}

void UpperWide(KTWCHAR* text) { _wcsupr(text); }

void LowerWide(KTWCHAR* text) { _wcslwr(text); }

int CompareWideIgnoringCase(const KTWCHAR* a, const KTWCHAR* b) { return _wcsicmp(a, b); }

int CompareWideIgnoringCase(const KTWCHAR* a, const KTWCHAR* b, std::size_t count) {
    return _wcsnicmp(a, b, count);
}

}  // namespace kt::sys
