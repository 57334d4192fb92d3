#include "tools/kttool/StoredValue.h"

#include <charconv>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <vector>

#include "kticore/core/Exception.h"
#include "kticore/objects/Persist.h"
#include "kticore/objects/Registry.h"
#include "params/Held.h"

namespace kttool {
namespace {

using kt::params::Held;

// The words for each kind, by its number.
constexpr const char* kKindNames[] = {
    "empty",     "boolean",        "byte",      "word",   "unsigned long",
    "int",       "unsigned int",   "long",      "double", "float",
    "text",      "size",           "real size", "point",  "real point",
    "rectangle", "real rectangle", "blob",      "object", "wide text",
};

// A blob shows this many bytes, then an ellipsis.
constexpr unsigned kBlobBytesShown = 16;

std::string Hex(unsigned value, int digits) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*x", digits, value);
    return text;
}

// The shortest text that reads back as the same number.
template <class Real>
std::string RealText(Real value) {
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return std::string(text, end);
}

template <class Unit>
std::string EscapedText(const Unit* text) {
    std::string escaped;
    for (; *text != 0; ++text) {
        const unsigned unit = static_cast<std::make_unsigned_t<Unit>>(*text);
        if (unit == '"' || unit == '\\')
            escaped += std::string("\\") + static_cast<char>(unit);
        else if (unit >= 0x20 && unit < 0x7F)
            escaped += static_cast<char>(unit);
        else if (sizeof(Unit) == 1)
            escaped += "\\x" + Hex(unit, 2);
        else
            escaped += "\\u" + Hex(unit, 4);
    }
    return escaped;
}

template <class Unit>
std::string Quoted(const Unit* text) {
    return "\"" + EscapedText(text) + "\"";
}

template <class Number>
std::string List(std::initializer_list<Number> numbers) {
    std::string text;
    for (const Number number : numbers) {
        if (!text.empty())
            text += ",";
        if constexpr (std::is_floating_point_v<Number>)
            text += RealText(number);
        else
            text += std::to_string(number);
    }
    return text;
}

std::string BlobText(const tagKTBLOB& blob) {
    std::string text = std::to_string(blob.size) + " bytes";
    for (unsigned i = 0; i < blob.size && i < kBlobBytesShown; ++i)
        text += (i == 0 ? ": " : " ") + Hex(blob.data[i], 2);
    if (blob.size > kBlobBytesShown)
        text += " ...";
    return text;
}

std::string ObjectText(IKTUnknown* object) {
    IPersistX* persist = nullptr;
    if (object == nullptr ||
        !object->QueryInterface(typeid(IPersistX), reinterpret_cast<void**>(&persist)))
        return "none";
    const Held<IPersistX> held(persist);
    const std::string name = persist->GetClassName();
    std::string text = name + ", " + std::to_string(persist->GetSize()) + " bytes";
    if (!IsRegisterObject(name.c_str()))
        text += ", class not registered";
    return text;
}

std::string ValueText(const tagKTVARIANT& value) {
    switch (value.vt) {
    case KTVT_EMPTY:
        return "";
    case KTVT_BOOL:
        return std::to_string(value.boolVal);
    case KTVT_BYTE:
        return std::to_string(value.bVal);
    case KTVT_WORD:
        return std::to_string(value.uiVal);
    case KTVT_ULONG:
        return std::to_string(value.ulVal);
    case KTVT_INT:
        return std::to_string(value.intVal);
    case KTVT_UINT:
        return std::to_string(value.uintVal);
    case KTVT_LONG:
        return std::to_string(value.lVal);
    case KTVT_DOUBLE:
        return RealText(value.dblVal);
    case KTVT_FLOAT:
        return RealText(value.fltVal);
    case KTVT_STR:
        return Quoted(value.pszVal);
    case KTVT_SIZE:
        return List({value.sizeVal.cx, value.sizeVal.cy});
    case KTVT_RSIZE:
        return List({value.rsizeVal.cx, value.rsizeVal.cy});
    case KTVT_POINT:
        return List({value.ptVal.x, value.ptVal.y});
    case KTVT_RPOINT:
        return List({value.rptVal.x, value.rptVal.y});
    case KTVT_RECT:
        return List({value.rcVal.left, value.rcVal.top, value.rcVal.right, value.rcVal.bottom});
    case KTVT_RRECT:
        return List({value.rrcVal.left, value.rrcVal.top, value.rrcVal.right, value.rrcVal.bottom});
    case KTVT_BLOB:
        return BlobText(value.blobVal);
    case KTVT_OBJECT:
        return ObjectText(value.punkVal);
    case KTVT_WSTR:
        return Quoted(value.pwszVal);
    default:
        return "";
    }
}

std::vector<unsigned char> FirstBytes(IXStream* stream, unsigned count) {
    std::vector<unsigned char> bytes(count);
    stream->Seek(0, 0);
    unsigned got = 0;
    while (got < count) {
        const unsigned read = stream->Read(bytes.data() + got, count - got);
        if (read == 0)
            break;
        got += read;
    }
    bytes.resize(got);
    return bytes;
}

}  // namespace

std::string Escaped(const char* text) {
    return EscapedText(text);
}

StreamContent ReadStreamContent(IXStream* stream) {
    StreamContent content;
    try {
        CKTVariant value;
        stream->Seek(0, 0);
        stream->ReadVariant(&value);
        const unsigned span = stream->GetPosition();
        const Held<IXStream> rewritten(new_StreamOnMemory());
        rewritten->WriteVariant(&value);
        if (span == 0 || rewritten->GetLength() != span ||
            FirstBytes(rewritten.get(), span) != FirstBytes(stream, span))
            return content;
        content.isValue = true;
        content.description = DescribeValue(value);
        content.unread = stream->GetLength() - span;
    } catch (const CXException&) {
        // Bytes that do not read as a variant: no value.
    }
    return content;
}

std::string DescribeValue(const tagKTVARIANT& value) {
    if (value.vt >= std::size(kKindNames))
        return "kind " + std::to_string(value.vt);
    const std::string text = ValueText(value);
    return text.empty() ? kKindNames[value.vt] : std::string(kKindNames[value.vt]) + " " + text;
}

}  // namespace kttool
