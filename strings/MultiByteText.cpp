// The multibyte text operations. They rest on the runtime's lead-byte test
// alone; the runtime's own _mbs functions are not used because they read past
// the terminator of text that ends in a lead byte.
#include "strings/MultiByteText.h"

#include "platform/TextConversion.h"
#include "strings/CaseMapping.h"

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

template <class Fold>
int CompareCodes(const char* a, const char* b, unsigned count, Fold fold) {
    for (; count != 0; --count) {
        KTWCHAR x = fold(CodeAt(a));
        KTWCHAR y = fold(CodeAt(b));
        if (x != y)
            return x < y ? -1 : 1;
        if (x == 0)
            return 0;
        a = Next(a);
        b = Next(b);
    }
    return 0;
}

// Maps a character through its 16-bit unit in the current code page; the
// mapped unit must come back as a character of the same size.
template <class MapUnit>
KTWCHAR MapChar(KTWCHAR code, MapUnit mapUnit) {
    if (code < 0x80)
        return mapUnit(code);  // ASCII is itself in every code page
    char bytes[2];
    unsigned size = Encode(code, bytes);
    unsigned codePage = sys::MultiByteCodePage();
    KTWCHAR unit;
    if (sys::MultiByteToWide(codePage, bytes, static_cast<int>(size), &unit, 1) != 1)
        return code;
    KTWCHAR mapped = mapUnit(unit);
    if (mapped == unit)
        return code;
    char back[2];
    if (sys::WideToMultiByte(codePage, &mapped, 1, back, 2) != static_cast<int>(size))
        return code;
    KTWCHAR check;
    if (sys::MultiByteToWide(codePage, back, static_cast<int>(size), &check, 1) != 1 ||
        check != mapped)
        return code;
    return size == 2 ? static_cast<KTWCHAR>(static_cast<unsigned char>(back[0]) << 8 |
                                            static_cast<unsigned char>(back[1]))
                     : static_cast<unsigned char>(back[0]);
}

template <class MapChar>
void MapInPlace(char* text, MapChar mapChar) {
    for (char* p = text; *p != 0;) {
        unsigned size = CharSize(p);
        KTWCHAR code = CodeAt(p);
        KTWCHAR mapped = mapChar(code);
        if (mapped != code)
            Encode(mapped, p);
        p += size;
    }
}

}  // namespace

KTWCHAR CharToUpper(KTWCHAR code) { return MapChar(code, text::ToUpperUnit); }

KTWCHAR CharToLower(KTWCHAR code) { return MapChar(code, text::ToLowerUnit); }

int Compare(const char* a, const char* b, unsigned count) {
    return CompareCodes(a, b, count, [](KTWCHAR code) { return code; });
}

int CompareIgnoringCase(const char* a, const char* b, unsigned count) {
    return CompareCodes(a, b, count, CharToLower);
}

void ToUpper(char* text) { MapInPlace(text, CharToUpper); }

void ToLower(char* text) { MapInPlace(text, CharToLower); }

}  // namespace kt::mbcs
