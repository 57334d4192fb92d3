// What the two string widths differ in, as two sets of static operations that
// the shared string code is written against: narrow text counts multibyte
// characters of the current code page, wide text counts 16-bit units.
#pragma once

#include <climits>
#include <string>

#include "kticore/strings/StringData.h"
#include "platform/RuntimeCase.h"
#include "strings/MultiByteText.h"
#include "strings/SpaceCharacters.h"

namespace kt {

struct NarrowText {
    using Unit = char;
    // AssignCopy(text, n) allocates n + this.
    static constexpr unsigned kAssignSpare = 1;

    static char* EmptyText();

    static unsigned Size(const char* text) {
        return static_cast<unsigned>(std::char_traits<char>::length(text));
    }
    static unsigned Length(const char* text) { return mbcs::Length(text); }
    // Units of the first `count` characters.
    static unsigned UnitsOf(const char* text, unsigned count) {
        return mbcs::ByteCount(text, count);
    }
    static const char* Next(const char* p) { return mbcs::Next(p); }
    static const char* Previous(const char* start, const char* p) {
        return mbcs::Previous(start, p);
    }
    static KTWCHAR CodeAt(const char* p) { return mbcs::CodeAt(p); }
    static unsigned Encode(KTWCHAR code, char* out) { return mbcs::Encode(code, out); }

    static const char* FindChar(const char* text, KTWCHAR code) {
        return mbcs::FindChar(text, code);
    }
    static const char* FindLastChar(const char* text, KTWCHAR code) {
        return mbcs::FindLastChar(text, code);
    }
    static const char* FindSubstring(const char* text, const char* what) {
        return mbcs::FindSubstring(text, what);
    }
    static const char* FindOneOf(const char* text, const char* set) {
        return mbcs::FindOneOf(text, set);
    }
    static const char* FindLastOneOf(const char* text, const char* set) {
        return mbcs::FindLastOneOf(text, set);
    }
    static int Compare(const char* a, const char* b, unsigned count) {
        return mbcs::Compare(a, b, count);
    }
    static int CompareIgnoringCase(const char* a, const char* b, unsigned count) {
        return mbcs::CompareIgnoringCase(a, b, count);
    }

    static bool IsSpace(char byte) { return text::IsSpaceByte(byte); }
    static void ToUpper(char* text) { mbcs::ToUpper(text); }
    static void ToLower(char* text) { mbcs::ToLower(text); }
};

struct WideText {
    using Unit = KTWCHAR;
    static constexpr unsigned kAssignSpare = 2;

    static KTWCHAR* EmptyText();

    static unsigned Size(const KTWCHAR* text) {
        return static_cast<unsigned>(std::char_traits<KTWCHAR>::length(text));
    }
    static unsigned Length(const KTWCHAR* text) { return Size(text); }
    static unsigned UnitsOf(const KTWCHAR* text, unsigned count) {
        unsigned units = 0;
        while (units < count && text[units] != 0)
            ++units;
        return units;
    }
    static const KTWCHAR* Next(const KTWCHAR* p) { return *p != 0 ? p + 1 : p; }
    static const KTWCHAR* Previous(const KTWCHAR* start, const KTWCHAR* p) {
        return p > start ? p - 1 : nullptr;
    }
    static KTWCHAR CodeAt(const KTWCHAR* p) { return *p; }
    static unsigned Encode(KTWCHAR code, KTWCHAR* out) {
        *out = code;
        return 1;
    }

    // As wcschr and wcsrchr: the unit 0 finds the terminator.
    static const KTWCHAR* FindChar(const KTWCHAR* text, KTWCHAR unit);
    static const KTWCHAR* FindLastChar(const KTWCHAR* text, KTWCHAR unit);
    static const KTWCHAR* FindSubstring(const KTWCHAR* text, const KTWCHAR* what);
    static const KTWCHAR* FindOneOf(const KTWCHAR* text, const KTWCHAR* set);
    static const KTWCHAR* FindLastOneOf(const KTWCHAR* text, const KTWCHAR* set);
    static int Compare(const KTWCHAR* a, const KTWCHAR* b, unsigned count);
    // _wcsicmp, or _wcsnicmp for a `count` below UINT_MAX: the sign tells.
    static int CompareIgnoringCase(const KTWCHAR* a, const KTWCHAR* b, unsigned count) {
        return count == UINT_MAX ? sys::CompareWideIgnoringCase(a, b)
                                 : sys::CompareWideIgnoringCase(a, b, count);
    }

    static bool IsSpace(KTWCHAR unit) { return text::IsSpaceUnit(unit); }
    static void ToUpper(KTWCHAR* text) { sys::UpperWide(text); }
    static void ToLower(KTWCHAR* text) { sys::LowerWide(text); }
};

}  // namespace kt
