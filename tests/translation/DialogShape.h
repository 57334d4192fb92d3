// A dialog template as plain values, the tests' own: what the builder writes
// and what the walker reads back, so that a rewritten template compares
// field by field against the expected one.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/WideText.h"

namespace kt::test {

using Bytes = std::vector<std::uint8_t>;

// A menu, class or title field: an ordinal or a text.
struct Field {
    bool isOrdinal = false;
    std::uint16_t ordinal = 0;
    WideString text;

    static Field Ordinal(std::uint16_t number) { return {true, number, WideString()}; }
    static Field Text(const WideString& text) { return {false, 0, text}; }
    bool operator==(const Field& other) const {
        return isOrdinal == other.isOrdinal && ordinal == other.ordinal && text == other.text;
    }
};

struct Font {
    std::uint16_t pointSize = 0;
    std::uint16_t weight = 0;  // extended form only
    std::uint8_t italic = 0;   // extended form only
    std::uint8_t charset = 0;  // extended form only
    WideString face;
    bool operator==(const Font& other) const {
        return pointSize == other.pointSize && weight == other.weight && italic == other.italic &&
               charset == other.charset && face == other.face;
    }
};

// Help ids and extended styles are not zero, so that a rewriter that lost
// them would be seen.
struct ItemShape {
    std::uint32_t style = 0x50000000;  // WS_CHILD | WS_VISIBLE
    std::uint32_t exStyle = 0x4;       // WS_EX_NOPARENTNOTIFY
    std::uint32_t helpId = 0x1D;       // extended form only; the classic reads as this
    std::int16_t x = 0, y = 0, cx = 0, cy = 0;
    std::uint32_t id = 0;
    Field windowClass;
    Field title;
    Bytes creationData;
    bool operator==(const ItemShape& other) const {
        return style == other.style && exStyle == other.exStyle && helpId == other.helpId &&
               x == other.x && y == other.y && cx == other.cx && cy == other.cy && id == other.id &&
               windowClass == other.windowClass && title == other.title &&
               creationData == other.creationData;
    }
};

constexpr std::uint32_t kDsSetFont = 0x40;
constexpr std::uint16_t kDialogExVersion = 1, kDialogExSignature = 0xFFFF;
constexpr std::uint16_t kButton = 0x80, kEdit = 0x81, kStatic = 0x82;

struct DialogShape {
    bool extended = false;
    std::uint32_t style = 0x80C80000;  // WS_POPUP | WS_CAPTION | WS_SYSMENU
    std::uint32_t exStyle = 0x10000;   // WS_EX_CONTROLPARENT
    std::uint32_t helpId = 0x2A;       // extended form only; the classic reads as this
    std::int16_t x = 7, y = 5, cx = 200, cy = 100;
    Field menu;         // the empty text: no menu
    Field windowClass;  // the empty text: the dialog class
    WideString title;
    Font font;  // written when style holds DS_SETFONT
    std::vector<ItemShape> items;
    bool operator==(const DialogShape& other) const {
        return extended == other.extended && style == other.style && exStyle == other.exStyle &&
               helpId == other.helpId && x == other.x && y == other.y && cx == other.cx &&
               cy == other.cy && menu == other.menu && windowClass == other.windowClass &&
               title == other.title && ((style & kDsSetFont) == 0 || font == other.font) &&
               items == other.items;
    }
};

inline std::ostream& operator<<(std::ostream& out, const Field& field) {
    if (field.isOrdinal)
        return out << "#" << field.ordinal;
    out << '"';
    for (KTWCHAR unit : field.text)
        out << (unit < 0x80 ? static_cast<char>(unit) : '?');
    return out << '"';
}

inline std::ostream& operator<<(std::ostream& out, const DialogShape& dialog) {
    out << (dialog.extended ? "DIALOGEX " : "DIALOG ") << dialog.x << "," << dialog.y << ","
        << dialog.cx << "," << dialog.cy << " style " << std::hex << dialog.style << std::dec
        << " title " << Field::Text(dialog.title);
    if ((dialog.style & kDsSetFont) != 0)
        out << " font " << dialog.font.pointSize << "/" << dialog.font.weight << "/"
            << int{dialog.font.italic} << "/" << int{dialog.font.charset} << " "
            << Field::Text(dialog.font.face);
    for (const ItemShape& item : dialog.items)
        out << "\n  " << item.id << " " << item.windowClass << " " << item.title << " " << item.x
            << "," << item.y << "," << item.cx << "," << item.cy << " data "
            << item.creationData.size();
    return out;
}

}  // namespace kt::test
