// Reads a dialog template back into a DialogShape, from the published format
// and independently of the library's own walk. Items are read from the next
// multiple of 4 from the template's start, as the dialog manager reads them,
// so an item written elsewhere reads as garbage. A template that does not
// hold together, pads with other bytes than zeros or has bytes behind its
// last item fails the read with the reason.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/translation/DialogShape.h"

namespace kt::test {

class TemplateWalker {
public:
    // The dialog in the `size` bytes at `data`; a failure names the offset.
    static ::testing::AssertionResult Read(const void* data, size_t size, DialogShape& dialog) {
        TemplateWalker in(static_cast<const std::uint8_t*>(data), size);
        in.ReadDialog(dialog);
        if (!in.problem.empty())
            return ::testing::AssertionFailure() << in.problem;
        if (in.at != size)
            return ::testing::AssertionFailure()
                   << "the template ends at " << in.at << " of " << size << " bytes";
        return ::testing::AssertionSuccess();
    }

private:
    TemplateWalker(const std::uint8_t* data, size_t size) : data(data), size(size) {}

    void ReadDialog(DialogShape& dialog) {
        dialog = DialogShape();
        dialog.extended = size >= 4 && data[2] == 0xFF && data[3] == 0xFF;
        if (dialog.extended) {
            if (Word() != kDialogExVersion)
                problem = "the extended form's version is not 1";
            Word();
            dialog.helpId = Dword();
            dialog.exStyle = Dword();
            dialog.style = Dword();
        } else {
            dialog.style = Dword();
            dialog.exStyle = Dword();
        }
        const std::uint16_t count = Word();
        dialog.x = Short(), dialog.y = Short(), dialog.cx = Short(), dialog.cy = Short();
        dialog.menu = ReadField();
        dialog.windowClass = ReadField();
        dialog.title = Text();
        if ((dialog.style & kDsSetFont) != 0) {
            dialog.font.pointSize = Word();
            if (dialog.extended) {
                dialog.font.weight = Word();
                dialog.font.italic = Byte();
                dialog.font.charset = Byte();
            }
            dialog.font.face = Text();
        }
        for (std::uint16_t i = 0; i < count && problem.empty(); ++i) {
            while (at % 4 != 0)
                if (Byte() != 0 && problem.empty())
                    problem = "padding that is not zero at " + std::to_string(at - 1);
            ItemShape item;
            if (dialog.extended) {
                item.helpId = Dword();
                item.exStyle = Dword();
                item.style = Dword();
            } else {
                item.style = Dword();
                item.exStyle = Dword();
            }
            item.x = Short(), item.y = Short(), item.cx = Short(), item.cy = Short();
            item.id = dialog.extended ? Dword() : Word();
            item.windowClass = ReadField();
            item.title = ReadField();
            const std::uint16_t extra = Word();
            for (std::uint16_t j = 0; j < extra && problem.empty(); ++j)
                item.creationData.push_back(Byte());
            dialog.items.push_back(item);
        }
    }

    std::uint8_t Byte() {
        if (at >= size) {
            if (problem.empty())
                problem = "read past the end at " + std::to_string(at);
            return 0;
        }
        return data[at++];
    }
    std::uint16_t Word() {
        const std::uint8_t low = Byte();
        return static_cast<std::uint16_t>(low | Byte() << 8);
    }
    std::int16_t Short() { return static_cast<std::int16_t>(Word()); }
    std::uint32_t Dword() {
        const std::uint16_t low = Word();
        return low | std::uint32_t{Word()} << 16;
    }
    WideString Text() {
        WideString text;
        for (std::uint16_t unit = Word(); unit != 0 && problem.empty(); unit = Word())
            text += static_cast<KTWCHAR>(unit);
        return text;
    }
    Field ReadField() {
        const size_t start = at;
        if (Word() == 0xFFFF)
            return Field::Ordinal(Word());
        at = start;
        return Field::Text(Text());
    }

    const std::uint8_t* data;
    size_t size;
    size_t at = 0;
    std::string problem;
};

}  // namespace kt::test
