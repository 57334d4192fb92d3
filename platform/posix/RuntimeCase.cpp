// The POSIX implementation of the runtime's case functions, as the runtime
// behaves in a program that has not called setlocale: the "C" locale changes
// the case of the ASCII letters alone, in wide and in narrow text. Narrow text
// is read by characters of the multibyte code page, so a trail byte that
// looks like a letter keeps its case. With a double-byte code page the
// runtime also changes double-byte letters (the full-width ones, say) through
// the code page's own case table; this build has none and leaves them.
#include "platform/RuntimeCase.h"

#include "platform/MultiByte.h"

namespace kt::sys {

namespace {

unsigned ToUpperAscii(unsigned code) { return code >= 'a' && code <= 'z' ? code - 0x20 : code; }
unsigned ToLowerAscii(unsigned code) { return code >= 'A' && code <= 'Z' ? code + 0x20 : code; }

// The next character as the runtime reads it: a lead byte takes the byte
// behind it, be it the terminator.
unsigned NextCode(const unsigned char*& p) {
    if (IsLeadByte(*p)) {
        const unsigned code = p[0] << 8 | p[1];
        p += 2;
        return code;
    }
    return *p++;
}

template <class Change>
void ChangeMultiByte(char* text, Change change) {
    for (unsigned char* p = reinterpret_cast<unsigned char*>(text); *p != 0;) {
        if (IsLeadByte(*p)) {
            p += 2;
            continue;
        }
        *p = static_cast<unsigned char>(change(*p));
        ++p;
    }
}

int CompareMultiByte(const char* a, const char* b, std::size_t count) {
    auto* p = reinterpret_cast<const unsigned char*>(a);
    auto* q = reinterpret_cast<const unsigned char*>(b);
    for (; count != 0; --count) {
        if (*p == 0 || *q == 0)
            return *p - *q;
        const int x = static_cast<int>(ToLowerAscii(NextCode(p)));
        const int y = static_cast<int>(ToLowerAscii(NextCode(q)));
        if (x != y)
            return x - y;
    }
    return 0;
}

template <class Change>
void ChangeWide(KTWCHAR* text, Change change) {
    for (; *text != 0; ++text)
        *text = static_cast<KTWCHAR>(change(*text));
}

int CompareWide(const KTWCHAR* a, const KTWCHAR* b, std::size_t count) {
    for (; count != 0; --count, ++a, ++b) {
        const int x = static_cast<int>(ToLowerAscii(*a));
        const int y = static_cast<int>(ToLowerAscii(*b));
        if (x != y || x == 0)
            return x - y;
    }
    return 0;
}

}  // namespace

void UpperMultiByte(char* text) { ChangeMultiByte(text, ToUpperAscii); }

void LowerMultiByte(char* text) { ChangeMultiByte(text, ToLowerAscii); }

int CompareMultiByteIgnoringCase(const char* a, const char* b) {
    return CompareMultiByte(a, b, static_cast<std::size_t>(-1));
}

int CompareMultiByteIgnoringCase(const char* a, const char* b, std::size_t count) {
    return CompareMultiByte(a, b, count);
}

void UpperWide(KTWCHAR* text) { ChangeWide(text, ToUpperAscii); }

void LowerWide(KTWCHAR* text) { ChangeWide(text, ToLowerAscii); }

int CompareWideIgnoringCase(const KTWCHAR* a, const KTWCHAR* b) {
    return CompareWide(a, b, static_cast<std::size_t>(-1));
}

int CompareWideIgnoringCase(const KTWCHAR* a, const KTWCHAR* b, std::size_t count) {
    return CompareWide(a, b, count);
}

}  // namespace kt::sys
