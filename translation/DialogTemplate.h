// The dialog template formats of the platform, DLGTEMPLATE and DLGTEMPLATEEX,
// as far as a rewrite reads and changes them, and a walk over a template
// that never reads a byte outside it.
//
// A template is a header with a variable part (menu, class, title and, with
// DS_SETFONT, a font block), then its items, each starting on a multiple of
// 4 from the template's start: a fixed part, a class field, a title field and
// a counted run of creation data. Menu, class and title fields are a string
// with its terminator, or an ordinal: 0xFFFF and one more word.
#pragma once

#include <cstddef>
#include <cstring>

#include "kticore/platform/Platform.h"

namespace kt {

// The word at offset 2 of an extended template.
constexpr size_t kSignatureOffset = 2;
constexpr WORD kExtendedSignature = 0xFFFF;
// The first word of a field that holds an ordinal.
constexpr WORD kOrdinalMarker = 0xFFFF;
constexpr size_t kOrdinalFieldSize = 4;
// The style bit that says a font block follows the title.
constexpr DWORD kStyleSetFont = 0x40;
// The two predefined classes whose texts are translated.
constexpr WORD kButtonClass = 0x0080;
constexpr WORD kStaticClass = 0x0082;
constexpr size_t kItemAlignment = 4;

// Where the fields of one form lie: header, font block and item.
struct TemplateForm {
    bool extended;
    size_t style;
    size_t itemCount;
    size_t cx;
    size_t cy;
    size_t variablePart;
    size_t fontFixedPart;  // point size; extended: and weight, italic, charset
    size_t itemX;
    size_t itemY;
    size_t itemCx;
    size_t itemCy;
    size_t itemFixedPart;
};

constexpr TemplateForm kClassicForm = {false, 0, 8, 14, 16, 18, 2, 8, 10, 12, 14, 18};
constexpr TemplateForm kExtendedForm = {true, 12, 16, 22, 24, 26, 6, 12, 14, 16, 18, 24};
// The weight word of an extended font block, behind the point size.
constexpr size_t kFontWeightOffset = 2;

// A run of bytes of a template.
struct TemplateSpan {
    size_t offset = 0;
    size_t size = 0;
    size_t End() const { return offset + size; }
};

// A menu, class or title field.
struct TemplateField {
    TemplateSpan span;
    bool isOrdinal = false;
    WORD ordinal = 0;
};

struct TemplateHeader {
    const TemplateForm* form = nullptr;
    DWORD style = 0;
    WORD itemCount = 0;
    TemplateSpan title;  // everything before it is the header, menu and class
    bool hasFont = false;
    TemplateSpan fontFixedPart;
    TemplateSpan faceName;
    size_t end = 0;  // behind the title or the font block
};

struct TemplateItem {
    size_t offset = 0;  // the fixed part, aligned
    TemplateField classField;
    TemplateField title;
    TemplateSpan creationData;  // its count word included
    // The class's texts are translated: button and static, by ordinal.
    bool TranslatesTitle() const {
        return classField.isOrdinal && (classField.ordinal == kButtonClass || classField.ordinal == kStaticClass);
    }
};

// Little-endian words of a template at any offset, whatever its alignment.
inline WORD ReadTemplateWord(const BYTE* bytes, size_t offset) {
    WORD value;
    std::memcpy(&value, bytes + offset, sizeof value);
    return value;
}
inline void WriteTemplateWord(BYTE* bytes, size_t offset, WORD value) {
    std::memcpy(bytes + offset, &value, sizeof value);
}

inline size_t AlignItem(size_t offset) { return (offset + kItemAlignment - 1) / kItemAlignment * kItemAlignment; }

// Reads the header, then the items one after another. Each step answers
// false when what it reads would not lie within the template's `size` bytes,
// or a string has no terminator there; the walk is then over.
class KTCORE_API CTemplateWalk {
public:
    CTemplateWalk(const void* tmpl, size_t size) : bytes(static_cast<const BYTE*>(tmpl)), size(size) {}

    bool ReadHeader(TemplateHeader& header);
    bool ReadItem(TemplateItem& item);

    const BYTE* Bytes() const { return bytes; }
    const BYTE* At(const TemplateSpan& span) const { return bytes + span.offset; }
    // A string as text; a template lies at an even address.
    const KTWCHAR* Text(const TemplateSpan& span) const {
        return reinterpret_cast<const KTWCHAR*>(bytes + span.offset);
    }

private:
    bool Fits(size_t offset, size_t count) const { return offset <= size && count <= size - offset; }
    bool ReadField(TemplateField& field);
    bool ReadString(TemplateSpan& span);

    const BYTE* bytes;
    size_t size;
    const TemplateForm* form = nullptr;
    size_t position = 0;
};

}  // namespace kt
