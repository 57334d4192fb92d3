// The multibyte text operations. They rest on the runtime's lead-byte test;
// the runtime's own _mbs functions read past the terminator of text that ends
// in a lead byte, and only the case operations, which must give the runtime's
// answers, call them, on text guarded against that.
#include "strings/MultiByteText.h"

#include <string>

#include "platform/RuntimeCase.h"

namespace kt::mbcs {

const char* Previous(const char* start, const char* p) {
    if (p <= start)
        return nullptr;
    // A byte that cannot lead ends a character, so the lead bytes standing
    // between it and p - 1 pair up from the front: p - 1 is a trail byte
    // exactly when an odd number of them stand before it.
    const char* q = p - 1;
    unsigned leads = 0;
    for (const char* r = q; r > start && IsLead(r[-1]); --r)
        ++leads;
    return leads % 2 == 1 ? q - 1 : q;
}

unsigned Length(const char* text) {
    unsigned length = 0;
    for (const char* p = text; *p != 0; p = Next(p))
        ++length;
    return length;
}

unsigned ByteCount(const char* text, unsigned count) {
    const char* p = text;
    for (; count != 0 && *p != 0; --count)
        p = Next(p);
    return static_cast<unsigned>(p - text);
}

KTWCHAR CodeAt(const char* p) {
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(p);
    if (CharSize(p) == 2)
        return static_cast<KTWCHAR>(bytes[0] << 8 | bytes[1]);
    return bytes[0];
}

bool IsDoubleByteCode(KTWCHAR code) { return code > 0xFF && IsLead(static_cast<char>(code >> 8)); }

unsigned Encode(KTWCHAR code, char* out) {
    if (IsDoubleByteCode(code)) {
        out[0] = static_cast<char>(code >> 8);
        out[1] = static_cast<char>(code & 0xFF);
        return 2;
    }
    out[0] = static_cast<char>(code & 0xFF);
    return 1;
}

const char* FindChar(const char* text, KTWCHAR code) {
    const char* p = text;
    for (; *p != 0; p = Next(p))
        if (CodeAt(p) == code)
            return p;
    return code == 0 ? p : nullptr;
}

const char* FindLastChar(const char* text, KTWCHAR code) {
    const char* found = nullptr;
    const char* p = text;
    for (; *p != 0; p = Next(p))
        if (CodeAt(p) == code)
            found = p;
    return code == 0 ? p : found;
}

const char* FindSubstring(const char* text, const char* what) {
    if (*what == 0)
        return text;
    for (const char* p = text; *p != 0; p = Next(p)) {
        const char* a = p;
        const char* b = what;
        while (*b != 0 && *a == *b) {
            ++a;
            ++b;
        }
        if (*b == 0)
            return p;
    }
    return nullptr;
}

const char* FindOneOf(const char* text, const char* set) {
    for (const char* p = text; *p != 0; p = Next(p))
        if (FindChar(set, CodeAt(p)) != nullptr)
            return p;
    return nullptr;
}

const char* FindLastOneOf(const char* text, const char* set) {
    const char* end = text;
    while (*end != 0)
        ++end;
    for (const char* p = Previous(text, end); p != nullptr; p = Previous(text, p))
        if (FindChar(set, CodeAt(p)) != nullptr)
            return p;
    return nullptr;
}

namespace {

// The runtime reads on behind a lone lead byte at the end (it takes the
// terminator for the trail byte); such text is compared from a copy that
// ends in two terminators.
bool EndsInLoneLead(const char* text) {
    const char* last = nullptr;
    for (const char* p = text; *p != 0; p = Next(p))
        last = p;
    return last != nullptr && IsLead(*last) && last[1] == 0;
}

const char* WithSecondTerminator(const char* text, std::string& copy) {
    if (!EndsInLoneLead(text))
        return text;
    copy.assign(text);
    copy.push_back('\0');
    return copy.c_str();
}

}  // namespace

int Compare(const char* a, const char* b, unsigned count) {
    for (; count != 0; --count) {
        const KTWCHAR x = CodeAt(a);
        const KTWCHAR y = CodeAt(b);
        if (x != y)
            return x < y ? -1 : 1;
        if (x == 0)
            return 0;
        a = Next(a);
        b = Next(b);
    }
    return 0;
}

int CompareIgnoringCase(const char* a, const char* b, unsigned count) {
    std::string copyOfA, copyOfB;
    a = WithSecondTerminator(a, copyOfA);
    b = WithSecondTerminator(b, copyOfB);
    return count == UINT_MAX ? sys::CompareMultiByteIgnoringCase(a, b)
                             : sys::CompareMultiByteIgnoringCase(a, b, count);
}

// The room that Upper and Lower make (2 * size + 2) holds a second
// terminator behind the first, where a lone lead byte at the end leads the
// runtime.
void ToUpper(char* text) {
    text[std::char_traits<char>::length(text) + 1] = 0;
    sys::UpperMultiByte(text);
}

void ToLower(char* text) {
    text[std::char_traits<char>::length(text) + 1] = 0;
    sys::LowerMultiByte(text);
}

}  // namespace kt::mbcs
