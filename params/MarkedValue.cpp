#include "params/MarkedValue.h"

#include <cstdint>
#include <cstring>
#include <initializer_list>

#include "strings/NumberText.h"

namespace kt::params {

using namespace kt::number;

namespace {

struct MarkerRow {
    char marker;
    unsigned short kind;
};

// Searched from the top in both directions; the last row ends the table.
constexpr MarkerRow kMarkers[] = {
    {'e', KTVT_EMPTY}, {'f', KTVT_BOOL},   {'b', KTVT_BYTE},  {'w', KTVT_WORD},  {'W', KTVT_ULONG},
    {'i', KTVT_INT},   {'u', KTVT_UINT},   {'l', KTVT_LONG},  {'R', KTVT_DOUBLE}, {'r', KTVT_FLOAT},
    {'s', KTVT_STR},   {'z', KTVT_SIZE},   {'Z', KTVT_RSIZE}, {'p', KTVT_POINT}, {'P', KTVT_RPOINT},
    {'t', KTVT_RECT},  {'T', KTVT_RRECT},  {'x', KTVT_BLOB},  {0, KTVT_OBJECT},
};

const MarkerRow* RowOfKind(unsigned short kind) {
    for (const MarkerRow& row : kMarkers)
        if (row.marker == 0 || row.kind == kind)
            return row.marker != 0 ? &row : nullptr;
    return nullptr;
}

const MarkerRow* RowOfMarker(char marker) {
    for (const MarkerRow& row : kMarkers)
        if (row.marker == 0 || row.marker == marker)
            return row.marker != 0 ? &row : nullptr;
    return nullptr;
}

constexpr char kHexDigits[] = "0123456789ABCDEF";
constexpr std::uint32_t kLargestWord = 0xFFFF;

// The integer rule: base 16 when the text from here on holds an `x` anywhere.
const char* ReadIntegerByRule(const char* text, bool isSigned, std::uint32_t& value) {
    if (*text == 0)
        return nullptr;
    const int base = std::strpbrk(text, "xX") != nullptr ? 16 : 10;
    return ReadInteger(text, base, isSigned, value);
}

// The list rule: behind a number, everything up to and including the next
// `,` is skipped; without one the list ends too early.
const char* NextInList(const char* end) {
    const char* comma = std::strchr(end, ',');
    return comma != nullptr ? comma + 1 : nullptr;
}

template <size_t N>
bool ReadIntegers(const char* text, LONG (&numbers)[N]) {
    for (size_t i = 0; i < N; ++i) {
        std::uint32_t value = 0;
        const char* end = ReadIntegerByRule(text, true, value);
        if (end == nullptr)
            return false;
        numbers[i] = static_cast<LONG>(value);
        if (i + 1 < N && (text = NextInList(end)) == nullptr)
            return false;
    }
    return true;
}

template <size_t N>
bool ReadReals(const char* text, double (&numbers)[N]) {
    for (size_t i = 0; i < N; ++i) {
        const char* end = *text != 0 ? ReadReal(text, numbers[i]) : nullptr;
        if (end == nullptr)
            return false;
        if (i + 1 < N && (text = NextInList(end)) == nullptr)
            return false;
    }
    return true;
}

// The value of a hexadecimal digit in either case, or -1.
int HexDigitValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

// Digits, a byte's high half first; other characters are skipped but still
// count in the size, and leave zero bytes at the end.
KTBlob ReadBlob(const char* text) {
    const size_t length = std::strlen(text);
    KTBlob blob(static_cast<unsigned long>((length + 1) / 2));
    size_t digits = 0;
    for (; *text != 0; ++text) {
        const int half = HexDigitValue(*text);
        if (half < 0)
            continue;
        blob.data[digits / 2] |= static_cast<unsigned char>(digits % 2 == 0 ? half << 4 : half);
        ++digits;
    }
    return blob;
}

bool ReadBoolean(const char* text, ULONG& value) {
    if (*text >= '0' && *text <= '9') {
        std::uint32_t number = 0;
        ReadInteger(text, 10, true, number);
        value = number;
        return number <= 1;
    }
    if (*text == 'Y' || *text == 'y' || *text == 'N' || *text == 'n') {
        value = *text == 'Y' || *text == 'y';
        return true;
    }
    return false;
}

bool ReadByte(const char* text, unsigned char& value) {
    const int high = HexDigitValue(text[0]);
    const int low = high < 0 ? -1 : HexDigitValue(text[1]);
    if (low < 0)
        return false;
    value = static_cast<unsigned char>(high << 4 | low);
    return true;
}

// The value of `kind` read from `text`, into `value` (which is empty).
bool ReadKind(unsigned short kind, const char* text, tagKTVARIANT& value) {
    std::uint32_t number = 0;
    switch (kind) {
    case KTVT_EMPTY:
        return true;
    case KTVT_BOOL:
        return ReadBoolean(text, value.boolVal);
    case KTVT_BYTE:
        return ReadByte(text, value.bVal);
    case KTVT_WORD:
        if (ReadIntegerByRule(text, false, number) == nullptr || number > kLargestWord)
            return false;
        value.uiVal = static_cast<unsigned short>(number);
        return true;
    case KTVT_ULONG:
    case KTVT_UINT:
    case KTVT_INT:
    case KTVT_LONG:
        if (ReadIntegerByRule(text, kind == KTVT_INT || kind == KTVT_LONG, number) == nullptr)
            return false;
        value.ulVal = number;
        return true;
    case KTVT_DOUBLE:
    case KTVT_FLOAT: {
        double real = 0;
        if (*text == 0 || ReadReal(text, real) == nullptr)
            return false;
        if (kind == KTVT_FLOAT)
            value.fltVal = static_cast<float>(real);
        else
            value.dblVal = real;
        return true;
    }
    case KTVT_SIZE:
    case KTVT_POINT: {
        LONG numbers[2];
        if (!ReadIntegers(text, numbers))
            return false;
        value.sizeVal = {numbers[0], numbers[1]};
        return true;
    }
    case KTVT_RSIZE:
    case KTVT_RPOINT: {
        double numbers[2];
        if (!ReadReals(text, numbers))
            return false;
        value.rsizeVal = {numbers[0], numbers[1]};
        return true;
    }
    case KTVT_RECT: {
        LONG numbers[4];
        if (!ReadIntegers(text, numbers))
            return false;
        value.rcVal = {numbers[0], numbers[1], numbers[2], numbers[3]};
        return true;
    }
    case KTVT_RRECT: {
        double numbers[4];
        if (!ReadReals(text, numbers))
            return false;
        value.rrcVal = {numbers[0], numbers[1], numbers[2], numbers[3]};
        return true;
    }
    default:
        return false;
    }
}

void AppendNumber(std::string& out, LONG number) { AppendSigned(out, number); }
void AppendNumber(std::string& out, double number) { AppendReal(out, number); }

template <class N>
void AppendList(std::string& out, std::initializer_list<N> numbers) {
    const char* separator = "";
    for (const N number : numbers) {
        out += separator;
        AppendNumber(out, number);
        separator = ",";
    }
}

// `room`: the bytes the digits may take.
void AppendBlob(std::string& out, const tagKTBLOB& blob, size_t room) {
    const std::uint64_t digits = std::uint64_t{blob.size} * 2;
    if (digits >= kBlobTextLimit || digits > room)
        return;
    for (ULONG i = 0; i < blob.size; ++i) {
        out += kHexDigits[blob.data[i] >> 4];
        out += kHexDigits[blob.data[i] & 15];
    }
}

}  // namespace

bool AppendMarkedValue(std::string& out, const tagKTVARIANT& value, size_t longest) {
    const MarkerRow* row = RowOfKind(value.vt);
    if (row == nullptr)
        return false;
    out += row->marker;
    switch (value.vt) {
    case KTVT_BOOL:
        out += value.boolVal == 1 ? '1' : '0';
        break;
    case KTVT_BYTE:
        out += kHexDigits[value.bVal >> 4];
        out += kHexDigits[value.bVal & 15];
        break;
    case KTVT_WORD:
        AppendUnsigned(out, value.uiVal);
        break;
    case KTVT_ULONG:
    case KTVT_UINT:
        AppendUnsigned(out, value.ulVal);
        break;
    case KTVT_INT:
    case KTVT_LONG:
        AppendSigned(out, value.lVal);
        break;
    case KTVT_DOUBLE:
        AppendReal(out, value.dblVal);
        break;
    case KTVT_FLOAT:
        AppendReal(out, static_cast<double>(value.fltVal));
        break;
    case KTVT_STR:
        if (value.pszVal != nullptr)
            out += value.pszVal;
        break;
    case KTVT_SIZE:
    case KTVT_POINT:
        AppendList<LONG>(out, {value.sizeVal.cx, value.sizeVal.cy});
        break;
    case KTVT_RSIZE:
    case KTVT_RPOINT:
        AppendList<double>(out, {value.rsizeVal.cx, value.rsizeVal.cy});
        break;
    case KTVT_RECT:
        AppendList<LONG>(out, {value.rcVal.left, value.rcVal.top, value.rcVal.right, value.rcVal.bottom});
        break;
    case KTVT_RRECT:
        AppendList<double>(out, {value.rrcVal.left, value.rrcVal.top, value.rrcVal.right, value.rrcVal.bottom});
        break;
    case KTVT_BLOB:
        AppendBlob(out, value.blobVal, longest > 0 ? longest - 1 : 0);
        break;
    default:
        break;
    }
    return true;
}

bool ReadMarkedValue(const char* text, CKTVariant& value) {
    const MarkerRow* row = RowOfMarker(*text);
    if (row == nullptr)
        return false;
    const char* body = text + 1;
    if (row->kind == KTVT_STR) {
        value = body;
        return true;
    }
    if (row->kind == KTVT_BLOB) {
        value = ReadBlob(body);
        return true;
    }
    tagKTVARIANT read;
    KTVariantInit(&read);
    read.vt = row->kind;
    if (!ReadKind(row->kind, body, read))
        return false;
    value = read;
    return true;
}

}  // namespace kt::params
