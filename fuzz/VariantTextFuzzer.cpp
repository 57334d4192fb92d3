// Converts arbitrary narrow and 16-bit text into every kind and back.
// Checks that a failure leaves the target empty and an in-place failure
// leaves the text untouched; that only the kinds a text may become succeed;
// that the scans answer as the runtime's sscanf and swscanf with the same
// one conversion; that both widths read and write alike; and that a number's
// text form reads back to a number with the same text form (and, for
// integers, the same value). The sanitizers watch for crashes and leaks.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>

#include "fuzz/FuzzInput.h"
#include "kticore/values/Variant.h"

namespace {

using kt::fuzz::FuzzInput;
using WideText = std::basic_string<KTWCHAR>;

void Require(bool condition, const char* what, unsigned short kind) {
    if (!condition) {
        std::fprintf(stderr, "variant_text_fuzzer: %s (kind %u)\n", what, kind);
        std::abort();
    }
}

// Every kind, a few unknown ones and the borrowed object.
constexpr unsigned short kTargets[] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10,   11,
                                       12, 13, 14, 15, 16, 17, 18, 19, 20, 1000, KTVT_BORROWED};

bool IsEmptyRecord(const tagKTVARIANT& v) {
    tagKTVARIANT empty;
    KTVariantInit(&empty);
    return std::memcmp(&v, &empty, sizeof v) == 0;
}

// Equal values: texts by their characters, everything else by its bytes
// (two NaNs of the same bits are the same value).
bool SameValue(const tagKTVARIANT& a, const tagKTVARIANT& b) {
    if (a.vt == KTVT_STR && b.vt == KTVT_STR)
        return std::strcmp(a.pszVal, b.pszVal) == 0;
    if (a.vt == KTVT_WSTR && b.vt == KTVT_WSTR)
        return WideText(a.pwszVal) == WideText(b.pwszVal);
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool IsIntegerKind(unsigned short vt) { return vt >= KTVT_ULONG && vt <= KTVT_LONG; }
bool IsRealKind(unsigned short vt) { return vt == KTVT_DOUBLE || vt == KTVT_FLOAT; }

// The kinds a text may become: the empty one, the texts and, when it reads as
// one, a number. A 16-bit text does not become an unsigned long.
bool MayConvert(unsigned short source, unsigned short target) {
    if (target == KTVT_EMPTY || target == KTVT_STR || target == KTVT_WSTR)
        return true;
    if (target == KTVT_ULONG)
        return source == KTVT_STR;
    return IsIntegerKind(target) || IsRealKind(target);
}

size_t DigitCount(const char* text) {
    size_t digits = 0;
    for (; *text != 0; ++text)
        digits += *text >= '0' && *text <= '9';
    return digits;
}

size_t DigitCount(const std::wstring& text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](wchar_t c) { return c >= L'0' && c <= L'9'; }));
}

bool SameReal(double a, double b) {
    if (std::isnan(a) || std::isnan(b))
        return std::isnan(a) && std::isnan(b) && std::signbit(a) == std::signbit(b);
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// The runtime's sscanf or swscanf of the same text with the same one
// conversion: %u, %d, %lf or %f.
int RuntimeScan(const char* text, const char* format, void* out) { return std::sscanf(text, format, out); }

int RuntimeScan(const std::wstring& text, const char* format, void* out) {
    const std::wstring wideFormat(format, format + std::strlen(format));
    return std::swscanf(text.c_str(), wideFormat.c_str(), out);
}

template <class Text>
void CheckAgainstRuntime(const Text& text, unsigned short kind, const tagKTVARIANT& result) {
    if (IsIntegerKind(kind)) {
        const bool isSigned = kind == KTVT_INT || kind == KTVT_LONG;
        std::uint32_t number = 0;
        const bool scanned = RuntimeScan(text, isSigned ? "%d" : "%u", &number) == 1;
        Require(scanned == (result.vt == kind), "scan and the runtime disagree on success", kind);
        // Beyond 63 bits the runtimes hold at a limit where the scan keeps
        // running over: compare only where both are exact.
        if (scanned && DigitCount(text) <= 18)
            Require(result.ulVal == number, "scan and the runtime disagree", kind);
    } else if (kind == KTVT_DOUBLE) {
        double number = 0;
        const bool scanned = RuntimeScan(text, "%lf", &number) == 1;
        Require(scanned == (result.vt == kind), "scan and the runtime disagree on success", kind);
        if (scanned)
            Require(SameReal(result.dblVal, number), "scan and the runtime disagree", kind);
    } else if (kind == KTVT_FLOAT) {
        float number = 0;
        const bool scanned = RuntimeScan(text, "%f", &number) == 1;
        Require(scanned == (result.vt == kind), "scan and the runtime disagree on success", kind);
        if (scanned)
            Require(SameReal(result.fltVal, number), "scan and the runtime disagree", kind);
    }
}

// A number's text form reads back to a number of the same text form; an
// integer to the same value. The second text is written over the text that
// `before` holds, if any.
void CheckRoundTrip(const CKTVariant& number, const CKTVariant& before) {
    const unsigned short kind = number.vt;
    CKTVariant text, again, textAgain(before), wide;
    Require(KTVariantChangeType(&text, &number, KTVT_STR) == 1, "a number has no text", kind);
    Require(KTVariantChangeType(&again, &text, kind) == 1, "a number's text does not read", kind);
    Require(KTVariantChangeType(&textAgain, &again, KTVT_STR) == 1, "no text the second time", kind);
    Require(std::strcmp(text.pszVal, textAgain.pszVal) == 0, "the text form is not stable", kind);
    if (IsIntegerKind(kind))
        Require(again == number, "an integer changed on its way through text", kind);
    Require(KTVariantChangeType(&wide, &number, KTVT_WSTR) == 1, "a number has no wide text", kind);
    Require(WideText(wide.pwszVal) == WideText(text.pszVal, text.pszVal + std::strlen(text.pszVal)),
            "the wide text form differs", kind);
}

bool IsAscii(const char* text) {
    for (; *text != 0; ++text)
        if (static_cast<unsigned char>(*text) >= 0x80)
            return false;
    return true;
}

// What a scan of the 16-bit text sees: its units up to the first that is not
// ASCII, which no number contains.
std::string AsciiPrefix(const KTWCHAR* text) {
    std::string prefix;
    for (; *text != 0 && *text < 0x80; ++text)
        prefix += static_cast<char>(*text);
    return prefix;
}

template <class Text>
void CheckText(const CKTVariant& source, const Text& runtimeText) {
    for (const unsigned short kind : kTargets) {
        CKTVariant result;
        const int converted = KTVariantChangeType(&result, &source, kind);
        Require(converted == 0 || converted == 1, "a result other than 0 or 1", kind);
        if (converted == 0)
            Require(IsEmptyRecord(result), "a failure left something behind", kind);
        else
            Require(result.vt == kind, "a success of the wrong kind", kind);
        Require(converted == 0 || MayConvert(source.vt, kind), "a text became what it may not",
                kind);

        CKTVariant inPlace(source);
        const int convertedInPlace = KTVariantChangeType(&inPlace, &inPlace, kind);
        Require(convertedInPlace == converted, "in place and into another variant disagree", kind);
        Require(SameValue(inPlace, converted ? result : source), "in place gave another result",
                kind);

        if (IsIntegerKind(kind) || IsRealKind(kind)) {
            if (kind != KTVT_ULONG || source.vt == KTVT_STR)
                CheckAgainstRuntime(runtimeText, kind, result);
            if (converted)
                CheckRoundTrip(result, source);
        }
    }
}

void CheckNarrow(const std::string& text) {
    const CKTVariant source(text.c_str());
    CheckText(source, text.c_str());
    if (IsAscii(text.c_str())) {
        CKTVariant wide, back;
        Require(KTVariantChangeType(&wide, &source, KTVT_WSTR) == 1, "no wide text", KTVT_WSTR);
        Require(KTVariantChangeType(&back, &wide, KTVT_STR) == 1, "no narrow text", KTVT_STR);
        Require(back == source, "ASCII text changed on its way through wide text", KTVT_STR);
    }
}

void CheckWide(const WideText& text) {
    const CKTVariant source(text.c_str());
    const std::string prefix = AsciiPrefix(text.c_str());
    CheckText(source, std::wstring(text.begin(), text.end()));
    // A scan of 16-bit text reads what the narrow scan of its ASCII start reads.
    const CKTVariant narrowTwin(prefix.c_str());
    for (const unsigned short kind : {KTVT_INT, KTVT_UINT, KTVT_LONG, KTVT_DOUBLE, KTVT_FLOAT}) {
        CKTVariant fromWide, fromNarrow;
        const int wideConverted = KTVariantChangeType(&fromWide, &source, kind);
        Require(wideConverted == KTVariantChangeType(&fromNarrow, &narrowTwin, kind),
                "the widths disagree on success", kind);
        Require(std::memcmp(&fromWide, &fromNarrow, sizeof fromWide) == 0,
                "the widths read different values", kind);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    FuzzInput input(data, size);
    const bool wide = input.Byte() % 2 != 0;
    std::string narrow;
    WideText units;
    // Bytes for narrow text; two bytes a unit, over the whole 16-bit range,
    // for wide text. A zero ends either.
    while (!input.Empty()) {
        const std::uint8_t byte = input.Byte();
        const KTWCHAR unit = wide ? static_cast<KTWCHAR>(byte | input.Byte() << 8) : byte;
        if (unit == 0)
            break;
        narrow += static_cast<char>(byte);
        units += unit;
    }
    if (wide)
        CheckWide(units);
    else
        CheckNarrow(narrow);
    return 0;
}
