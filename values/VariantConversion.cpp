// The conversion of a variant into another kind, by a fixed matrix of source
// and target kinds. Numbers become numbers and texts, texts become numbers
// through scanf-style reading, geometric records convert only to their twin
// in the other number type. Nothing converts to or from a compound kind
// otherwise, and no text becomes a boolean.
#include <algorithm>
#include <cstdint>
#include <clocale>
#include <cstring>

#include "kticore/values/Variant.h"
#include "strings/NumberText.h"
#include "values/BlobBytes.h"
#include "values/TextCopy.h"

namespace {

// The bits that the processor's truncating conversion gives for a double
// beyond its range (and for NaN): the "integer indefinite", 0x80000000 in
// 32 bits and 0x8000000000000000 in 64.
constexpr std::int32_t kIndefinite32 = INT32_MIN;
constexpr std::int64_t kIndefinite64 = INT64_MIN;
constexpr double kTwoTo31 = 2147483648.0;
constexpr double kTwoTo63 = 9223372036854775808.0;

// Taken away from a negative number before it is cut toward zero: not 0.5,
// so that -2.5 rounds to -2.
constexpr double kNegativeRoundingBias = 0.4999999;
constexpr double kPositiveRoundingBias = 0.5;

const char kYes[] = "Yes";
const char kNo[] = "No";

bool IsUnknownKind(unsigned short vt) { return vt > KTVT_WSTR; }

std::int32_t CutTo32(double x) {
    return x > -kTwoTo31 - 1.0 && x < kTwoTo31 ? static_cast<std::int32_t>(x) : kIndefinite32;
}

// Through 64 bits, keeping the low 32: all of 0 to 4294967295 survive.
std::uint32_t CutThrough64(double x) {
    const std::int64_t cut =
        x >= -kTwoTo63 && x < kTwoTo63 ? static_cast<std::int64_t>(x) : kIndefinite64;
    return static_cast<std::uint32_t>(cut);
}

LONG Round(double x) {
    return CutTo32(x >= 0 ? x + kPositiveRoundingBias : x - kNegativeRoundingBias);
}

// An integer rectangle excludes its right and bottom edges, a double one
// includes them: 1 comes off or on between the two.
LONG RoundExcludedEdge(double x) {
    return static_cast<LONG>(static_cast<std::uint32_t>(Round(x)) + 1u);
}

LONG BeforeExcludedEdge(LONG edge) {
    return static_cast<LONG>(static_cast<std::uint32_t>(edge) - 1u);
}

// A null text reads as the empty text: the matrix assumes a text, and a
// serious caller expects "no text" to scan like "" (it fails) and to turn
// into the empty text of the other width rather than to crash.
template <class Unit>
const Unit* TextOrEmpty(const Unit* text) {
    static const Unit kEmpty[] = {0};
    return text != nullptr ? text : kEmpty;
}

template <class Unit>
bool ScanInteger(const Unit* text, std::uint32_t& bits) {
    return kt::number::ScanDecimal(TextOrEmpty(text), bits) != nullptr;
}

// The scans and formats of reals follow the point of the process's locale,
// as the runtime's own do; a point of more than one character is not one
// they can use.
char DecimalPoint() {
    const char* point = std::localeconv()->decimal_point;
    return point != nullptr && point[0] != 0 && point[1] == 0 ? point[0] : '.';
}

template <class Unit, class Real>
bool ScanReal(const Unit* text, Real& value) {
    return kt::number::ScanReal(TextOrEmpty(text), value, DecimalPoint()) != nullptr;
}

char* WriteReal(char* out, double value) {
    char* end = kt::number::WriteReal(out, value, kt::number::kShortRealDigits);
    const char point = DecimalPoint();
    if (point != '.')
        std::replace(out, end, '.', point);
    return end;
}

bool ToBoolean(const tagKTVARIANT& src, ULONG& value) {
    switch (src.vt) {
    case KTVT_EMPTY:
        value = 0;
        return true;
    case KTVT_BOOL:
        value = src.boolVal;
        return true;
    case KTVT_BYTE:
        value = src.bVal != 0;
        return true;
    case KTVT_WORD:
        value = src.uiVal != 0;
        return true;
    case KTVT_ULONG:
    case KTVT_INT:
    case KTVT_UINT:
    case KTVT_LONG:
        value = src.ulVal != 0;
        return true;
    case KTVT_DOUBLE:
        value = src.dblVal > 0.0 || src.dblVal < 0.0;
        return true;
    case KTVT_FLOAT:
        value = src.fltVal > 0.0f || src.fltVal < 0.0f;
        return true;
    default:
        return false;
    }
}

// The 32 bits that an integer target takes from the source. A byte or a
// word target keeps the low bits of them.
bool ToIntegerBits(const tagKTVARIANT& src, unsigned short vt, std::uint32_t& bits) {
    const bool signedTarget = vt == KTVT_INT || vt == KTVT_LONG;
    const bool narrowTarget = vt == KTVT_BYTE || vt == KTVT_WORD;
    switch (src.vt) {
    case KTVT_EMPTY:
        bits = 0;
        return true;
    case KTVT_BYTE:
        bits = src.bVal;
        return true;
    case KTVT_WORD:
        bits = src.uiVal;
        return true;
    case KTVT_BOOL:
    case KTVT_ULONG:
    case KTVT_INT:
    case KTVT_UINT:
    case KTVT_LONG:
        bits = src.ulVal;
        return true;
    case KTVT_DOUBLE:
    case KTVT_FLOAT: {
        if (narrowTarget || (vt == KTVT_ULONG && src.vt == KTVT_FLOAT))
            return false;
        const double x = src.vt == KTVT_DOUBLE ? src.dblVal : static_cast<double>(src.fltVal);
        bits = signedTarget ? static_cast<std::uint32_t>(CutTo32(x)) : CutThrough64(x);
        return true;
    }
    // %d and %u read the same bits: see ScanDecimal.
    case KTVT_STR:
        return !narrowTarget && ScanInteger(src.pszVal, bits);
    case KTVT_WSTR:
        return !narrowTarget && vt != KTVT_ULONG && ScanInteger(src.pwszVal, bits);
    default:
        return false;
    }
}

template <class Real>
bool ToReal(const tagKTVARIANT& src, Real& value) {
    switch (src.vt) {
    case KTVT_EMPTY:
        value = 0;
        return true;
    case KTVT_BOOL:
    case KTVT_INT:
    case KTVT_LONG:
        value = static_cast<Real>(src.intVal);
        return true;
    case KTVT_BYTE:
        value = static_cast<Real>(src.bVal);
        return true;
    case KTVT_WORD:
        value = static_cast<Real>(src.uiVal);
        return true;
    case KTVT_ULONG:
    case KTVT_UINT:
        value = static_cast<Real>(src.ulVal);
        return true;
    case KTVT_DOUBLE:
        value = static_cast<Real>(src.dblVal);
        return true;
    case KTVT_FLOAT:
        value = static_cast<Real>(src.fltVal);
        return true;
    case KTVT_STR:
        return ScanReal(src.pszVal, value);
    case KTVT_WSTR:
        return ScanReal(src.pwszVal, value);
    default:
        return false;
    }
}

// The text form of a number or a boolean, as printf writes it: "%hu" of a
// byte, "%u" and "%d" of the integers, "%lg" of a double and "%g" of a float
// widened to double. It is ASCII, so it is the same in both widths.
struct NumberText {
    char text[kt::number::kLongestNumber];
    size_t size = 0;
};

bool FormatNumber(const tagKTVARIANT& src, NumberText& out) {
    char* const text = out.text;
    char* end = text;
    switch (src.vt) {
    case KTVT_EMPTY:
        break;
    case KTVT_BOOL: {
        const char* word = src.boolVal != 0 ? kYes : kNo;
        end = std::copy(word, word + std::strlen(word), text);
        break;
    }
    case KTVT_BYTE:
        end = kt::number::WriteUnsigned(text, src.bVal);
        break;
    case KTVT_WORD:
        end = kt::number::WriteUnsigned(text, src.uiVal);
        break;
    case KTVT_ULONG:
    case KTVT_UINT:
        end = kt::number::WriteUnsigned(text, src.ulVal);
        break;
    case KTVT_INT:
    case KTVT_LONG:
        end = kt::number::WriteSigned(text, src.intVal);
        break;
    case KTVT_DOUBLE:
        end = WriteReal(text, src.dblVal);
        break;
    case KTVT_FLOAT:
        end = WriteReal(text, static_cast<double>(src.fltVal));
        break;
    default:
        return false;
    }
    out.size = static_cast<size_t>(end - text);
    return true;
}

template <class Unit>
Unit* Widened(const char* ascii, size_t size) {
    Unit* copy = new Unit[size + 1];
    std::copy(ascii, ascii + size, copy);
    copy[size] = 0;
    return copy;
}

// A number's text into a variant that holds a narrow text already: its
// array takes the text when it is short and the text fits, which saves an
// allocation and a release on every conversion into the same variant. A
// source without a number's text form returns false and changes nothing.
bool WriteNumberOverText(const tagKTVARIANT& src, tagKTVARIANT& dst) {
    NumberText number;
    if (!FormatNumber(src, number))
        return false;
    char* text = dst.pszVal;
    char* const roomEnd = text != nullptr ? std::find(text, text + kt::number::kLongestNumber, 0) : nullptr;
    const bool fits = text != nullptr && *roomEnd == 0 && static_cast<size_t>(roomEnd - text) >= number.size;
    if (!fits) {
        KTVariantClear(&dst);
        dst.vt = KTVT_STR;
        dst.pszVal = text = new char[number.size + 1];
    }
    std::copy(number.text, number.text + number.size, text);
    text[number.size] = 0;
    return true;
}

// A text of the same width is copied as KTVariantCopy copies it, a null one
// as null.
bool ToNarrowText(const tagKTVARIANT& src, char*& text) {
    switch (src.vt) {
    case KTVT_STR:
        text = kt::CopyText(src.pszVal);
        return true;
    case KTVT_WSTR: {
        const CXString narrow(TextOrEmpty(src.pwszVal));
        text = kt::CopyText(narrow, narrow.GetSize());
        return true;
    }
    default: {
        NumberText number;
        if (!FormatNumber(src, number))
            return false;
        text = kt::CopyText(number.text, number.size);
        return true;
    }
    }
}

bool ToWideText(const tagKTVARIANT& src, KTWCHAR*& text) {
    switch (src.vt) {
    case KTVT_WSTR:
        text = kt::CopyText(src.pwszVal);
        return true;
    case KTVT_STR: {
        const CXStringW wide(TextOrEmpty(src.pszVal));
        text = kt::CopyText(wide, wide.GetSize());
        return true;
    }
    default: {
        NumberText number;
        if (!FormatNumber(src, number))
            return false;
        text = Widened<KTWCHAR>(number.text, number.size);
        return true;
    }
    }
}

// A record kind converts from itself, copied, and from its twin of the other
// number type, through `convert`.
template <class Record, class Twin, class Convert>
bool ToRecord(const tagKTVARIANT& src, unsigned short own, unsigned short twin,
              Record& value, Convert convert) {
    if (src.vt == own) {
        std::memcpy(&value, &src.sizeVal, sizeof value);
        return true;
    }
    if (src.vt != twin)
        return false;
    Twin from;
    std::memcpy(&from, &src.sizeVal, sizeof from);
    value = convert(from);
    return true;
}

bool ToSize(const tagKTVARIANT& src, tagSIZE& value) {
    return ToRecord<tagSIZE, tagRSIZE>(src, KTVT_SIZE, KTVT_RSIZE, value, [](const tagRSIZE& r) {
        return tagSIZE{Round(r.cx), Round(r.cy)};
    });
}

bool ToRealSize(const tagKTVARIANT& src, tagRSIZE& value) {
    return ToRecord<tagRSIZE, tagSIZE>(src, KTVT_RSIZE, KTVT_SIZE, value, [](const tagSIZE& s) {
        return tagRSIZE{static_cast<double>(s.cx), static_cast<double>(s.cy)};
    });
}

bool ToPoint(const tagKTVARIANT& src, tagPOINT& value) {
    return ToRecord<tagPOINT, tagRPOINT>(src, KTVT_POINT, KTVT_RPOINT, value,
                                         [](const tagRPOINT& p) {
                                             return tagPOINT{Round(p.x), Round(p.y)};
                                         });
}

bool ToRealPoint(const tagKTVARIANT& src, tagRPOINT& value) {
    return ToRecord<tagRPOINT, tagPOINT>(src, KTVT_RPOINT, KTVT_POINT, value,
                                         [](const tagPOINT& p) {
                                             return tagRPOINT{static_cast<double>(p.x),
                                                              static_cast<double>(p.y)};
                                         });
}

bool ToRect(const tagKTVARIANT& src, tagRECT& value) {
    return ToRecord<tagRECT, tagRRECT>(src, KTVT_RECT, KTVT_RRECT, value, [](const tagRRECT& r) {
        return tagRECT{Round(r.left), Round(r.top), RoundExcludedEdge(r.right),
                       RoundExcludedEdge(r.bottom)};
    });
}

bool ToRealRect(const tagKTVARIANT& src, tagRRECT& value) {
    return ToRecord<tagRRECT, tagRECT>(src, KTVT_RRECT, KTVT_RECT, value, [](const tagRECT& r) {
        // In 32 bits, running over as the way back does: INT_MIN comes back.
        return tagRRECT{static_cast<double>(r.left), static_cast<double>(r.top),
                        static_cast<double>(BeforeExcludedEdge(r.right)),
                        static_cast<double>(BeforeExcludedEdge(r.bottom))};
    });
}

bool ToBlob(const tagKTVARIANT& src, tagKTBLOB& value) {
    if (src.vt != KTVT_BLOB)
        return false;
    value.size = src.blobVal.size;
    value.data = kt::CopyBlobBytes(src.blobVal.data, src.blobVal.size);
    return true;
}

bool ToObject(const tagKTVARIANT& src, IKTUnknown*& value) {
    if (src.vt != KTVT_OBJECT)
        return false;
    value = src.punkVal;
    if (value != nullptr)
        value->AddRef();
    return true;
}

bool ToBorrowed(const tagKTVARIANT& src, IKTUnknown*& value) {
    if (src.vt != KTVT_OBJECT)
        return false;
    value = src.punkVal;
    return true;
}

bool IsTargetKind(unsigned short vt) { return !IsUnknownKind(vt) || vt == KTVT_BORROWED; }

// Fills `out`, which is empty, with the value of `src` in kind `vt`. A
// failure may have written a part of the value: it empties `out` again.
bool Convert(const tagKTVARIANT& src, unsigned short vt, tagKTVARIANT& out) {
    if (!IsTargetKind(vt))
        return false;
    // An unknown source gives a zero value of any target: `out` is all zero.
    if (IsUnknownKind(src.vt) || vt == KTVT_EMPTY) {
        out.vt = vt;
        return true;
    }
    bool converted = false;
    switch (vt) {
    case KTVT_BOOL:
        converted = ToBoolean(src, out.boolVal);
        break;
    case KTVT_BYTE:
    case KTVT_WORD:
    case KTVT_ULONG:
    case KTVT_INT:
    case KTVT_UINT:
    case KTVT_LONG: {
        std::uint32_t bits = 0;
        converted = ToIntegerBits(src, vt, bits);
        if (vt == KTVT_BYTE)
            out.bVal = static_cast<unsigned char>(bits);
        else if (vt == KTVT_WORD)
            out.uiVal = static_cast<unsigned short>(bits);
        else
            out.ulVal = bits;
        break;
    }
    case KTVT_DOUBLE:
        converted = ToReal(src, out.dblVal);
        break;
    case KTVT_FLOAT:
        converted = ToReal(src, out.fltVal);
        break;
    case KTVT_STR:
        converted = ToNarrowText(src, out.pszVal);
        break;
    case KTVT_WSTR:
        converted = ToWideText(src, out.pwszVal);
        break;
    case KTVT_SIZE:
        converted = ToSize(src, out.sizeVal);
        break;
    case KTVT_RSIZE:
        converted = ToRealSize(src, out.rsizeVal);
        break;
    case KTVT_POINT:
        converted = ToPoint(src, out.ptVal);
        break;
    case KTVT_RPOINT:
        converted = ToRealPoint(src, out.rptVal);
        break;
    case KTVT_RECT:
        converted = ToRect(src, out.rcVal);
        break;
    case KTVT_RRECT:
        converted = ToRealRect(src, out.rrcVal);
        break;
    case KTVT_BLOB:
        converted = ToBlob(src, out.blobVal);
        break;
    case KTVT_OBJECT:
        converted = ToObject(src, out.punkVal);
        break;
    default:  // KTVT_BORROWED
        converted = ToBorrowed(src, out.punkVal);
        break;
    }
    if (converted)
        out.vt = vt;
    else
        KTVariantInit(&out);
    return converted;
}

}  // namespace

int KTVariantChangeType(tagKTVARIANT* dst, const tagKTVARIANT* src, unsigned short vt) {
    if (dst == nullptr || src == nullptr)
        return 0;
    if (dst != src) {
        if (vt == KTVT_STR && dst->vt == KTVT_STR && WriteNumberOverText(*src, *dst))
            return 1;
        KTVariantClear(dst);
        return Convert(*src, vt, *dst);
    }
    // In place: the variant stays as it was until the conversion has
    // succeeded. The result is moved in rather than copied: the same record
    // without a second allocation.
    tagKTVARIANT converted;
    KTVariantInit(&converted);
    if (!Convert(*src, vt, converted))
        return 0;
    KTVariantClear(dst);
    std::memcpy(static_cast<void*>(dst), &converted, sizeof converted);
    return 1;
}

int CKTVariant::ChangeType(unsigned short vt, tagKTVARIANT* src) {
    if (src == nullptr || src == this) {
        if (this->vt == vt)
            return 1;
        src = this;
    }
    return KTVariantChangeType(this, src, vt);
}
