#include "translation/DialogTemplate.h"

#include <cstdint>

namespace kt {

bool CTemplateWalk::ReadHeader(TemplateHeader& header) {
    // Texts are read in place as 16-bit units.
    if (reinterpret_cast<std::uintptr_t>(bytes) % sizeof(WORD) != 0)
        return false;
    if (!Fits(0, kSignatureOffset + sizeof(WORD)))
        return false;
    form = ReadTemplateWord(bytes, kSignatureOffset) == kExtendedSignature ? &kExtendedForm : &kClassicForm;
    if (!Fits(0, form->variablePart))
        return false;
    header.form = form;
    std::memcpy(&header.style, bytes + form->style, sizeof header.style);
    header.itemCount = ReadTemplateWord(bytes, form->itemCount);
    position = form->variablePart;
    TemplateField menu;
    TemplateField windowClass;
    if (!ReadField(menu) || !ReadField(windowClass) || !ReadString(header.title))
        return false;
    header.hasFont = (header.style & kStyleSetFont) != 0;
    if (header.hasFont) {
        header.fontFixedPart = {position, form->fontFixedPart};
        if (!Fits(position, form->fontFixedPart))
            return false;
        position += form->fontFixedPart;
        if (!ReadString(header.faceName))
            return false;
    }
    header.end = position;
    return true;
}

bool CTemplateWalk::ReadItem(TemplateItem& item) {
    item.offset = AlignItem(position);
    if (!Fits(item.offset, form->itemFixedPart))
        return false;
    position = item.offset + form->itemFixedPart;
    if (!ReadField(item.classField) || !ReadField(item.title) || !Fits(position, sizeof(WORD)))
        return false;
    item.creationData = {position, sizeof(WORD) + ReadTemplateWord(bytes, position)};
    if (!Fits(position, item.creationData.size))
        return false;
    position = item.creationData.End();
    return true;
}

bool CTemplateWalk::ReadField(TemplateField& field) {
    if (!Fits(position, sizeof(WORD)))
        return false;
    field.isOrdinal = ReadTemplateWord(bytes, position) == kOrdinalMarker;
    if (!field.isOrdinal) {
        field.ordinal = 0;
        return ReadString(field.span);
    }
    if (!Fits(position, kOrdinalFieldSize))
        return false;
    field.ordinal = ReadTemplateWord(bytes, position + sizeof(WORD));
    field.span = {position, kOrdinalFieldSize};
    position += kOrdinalFieldSize;
    return true;
}

bool CTemplateWalk::ReadString(TemplateSpan& span) {
    for (size_t at = position; Fits(at, sizeof(WORD)); at += sizeof(WORD)) {
        if (ReadTemplateWord(bytes, at) == 0) {
            span = {position, at + sizeof(WORD) - position};
            position = span.End();
            return true;
        }
    }
    return false;
}

}  // namespace kt
