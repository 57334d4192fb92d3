// The searching and comparing of 16-bit text, unit by unit. Written here
// rather than taken from the C library: natively wchar_t is not 16 bits. Case
// is the runtime's (platform/RuntimeCase.h).
#include "strings/TextTraits.h"

namespace kt {

const KTWCHAR* WideText::FindChar(const KTWCHAR* text, KTWCHAR unit) {
    for (; *text != 0; ++text)
        if (*text == unit)
            return text;
    return unit == 0 ? text : nullptr;
}

const KTWCHAR* WideText::FindLastChar(const KTWCHAR* text, KTWCHAR unit) {
    const KTWCHAR* found = nullptr;
    for (; *text != 0; ++text)
        if (*text == unit)
            found = text;
    return unit == 0 ? text : found;
}

const KTWCHAR* WideText::FindSubstring(const KTWCHAR* text, const KTWCHAR* what) {
    if (*what == 0)
        return text;
    for (; *text != 0; ++text) {
        unsigned i = 0;
        while (what[i] != 0 && text[i] == what[i])
            ++i;
        if (what[i] == 0)
            return text;
    }
    return nullptr;
}

const KTWCHAR* WideText::FindOneOf(const KTWCHAR* text, const KTWCHAR* set) {
    for (; *text != 0; ++text)
        if (FindChar(set, *text) != nullptr)
            return text;
    return nullptr;
}

const KTWCHAR* WideText::FindLastOneOf(const KTWCHAR* text, const KTWCHAR* set) {
    for (const KTWCHAR* p = text + Size(text); p != text;)
        if (FindChar(set, *--p) != nullptr)
            return p;
    return nullptr;
}

int WideText::Compare(const KTWCHAR* a, const KTWCHAR* b, unsigned count) {
    for (; count != 0; --count, ++a, ++b) {
        if (*a != *b)
            return *a < *b ? -1 : 1;
        if (*a == 0)
            return 0;
    }
    return 0;
}

}  // namespace kt
