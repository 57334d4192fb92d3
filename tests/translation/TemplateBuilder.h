// Writes a DialogShape in the template format it names, as a resource
// compiler lays it out: items on multiples of 4 from the template's start.
#pragma once

#include <cstring>

#include "tests/translation/DialogShape.h"

namespace kt::test {

class TemplateBuilder {
public:
    static Bytes Build(const DialogShape& dialog) {
        TemplateBuilder out;
        if (dialog.extended) {
            out.Word(kDialogExVersion)
                .Word(kDialogExSignature)
                .Dword(dialog.helpId)
                .Dword(dialog.exStyle)
                .Dword(dialog.style);
        } else {
            out.Dword(dialog.style).Dword(dialog.exStyle);
        }
        out.Word(static_cast<int>(dialog.items.size()));
        out.Word(dialog.x).Word(dialog.y).Word(dialog.cx).Word(dialog.cy);
        out.Put(dialog.menu).Put(dialog.windowClass).Text(dialog.title);
        if ((dialog.style & kDsSetFont) != 0) {
            out.Word(dialog.font.pointSize);
            if (dialog.extended)
                out.Word(dialog.font.weight).Byte(dialog.font.italic).Byte(dialog.font.charset);
            out.Text(dialog.font.face);
        }
        for (const ItemShape& item : dialog.items) {
            while (out.bytes.size() % 4 != 0)
                out.Byte(0);
            if (dialog.extended)
                out.Dword(item.helpId).Dword(item.exStyle).Dword(item.style);
            else
                out.Dword(item.style).Dword(item.exStyle);
            out.Word(item.x).Word(item.y).Word(item.cx).Word(item.cy);
            if (dialog.extended)
                out.Dword(item.id);
            else
                out.Word(static_cast<int>(item.id));
            out.Put(item.windowClass).Put(item.title);
            out.Word(static_cast<int>(item.creationData.size()));
            out.bytes.insert(out.bytes.end(), item.creationData.begin(), item.creationData.end());
        }
        return out.bytes;
    }

private:
    TemplateBuilder& Byte(std::uint8_t value) {
        bytes.push_back(value);
        return *this;
    }
    // Signed or not: the low 16 bits.
    TemplateBuilder& Word(int value) {
        return Byte(static_cast<std::uint8_t>(value & 0xFF))
            .Byte(static_cast<std::uint8_t>(value >> 8 & 0xFF));
    }
    TemplateBuilder& Dword(std::uint32_t value) {
        return Word(static_cast<int>(value & 0xFFFF)).Word(static_cast<int>(value >> 16));
    }
    TemplateBuilder& Text(const WideString& text) {
        for (KTWCHAR unit : text)
            Word(unit);
        return Word(0);
    }
    TemplateBuilder& Put(const Field& field) {
        return field.isOrdinal ? Word(0xFFFF).Word(field.ordinal) : Text(field.text);
    }

    Bytes bytes;
};

}  // namespace kt::test
