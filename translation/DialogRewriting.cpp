// A template is never patched: every string's length moves all behind it. It
// is read and written anew, in two passes: the layout moves the controls in
// a copy of the template, and the translation pass reads that copy, so it
// always sees a well-formed template.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "kticore/core/Exception.h"
#include "kticore/strings/XStringW.h"
#include "translation/ByteBuffer.h"
#include "translation/DialogTemplate.h"
#include "translation/Lookup.h"
#include "translation/Rewriting.h"
#include "translation/SuppDictionary.h"

namespace kt {
namespace {

constexpr DWORD kOutputCapacity = 2048;
constexpr DWORD kOutputGrowStep = 1024;
constexpr DWORD kItemScratchCapacity = 512;
constexpr DWORD kItemScratchGrowStep = 256;

void* HandBack(const void* tmpl, unsigned* outSize) {
    *outSize = 0;
    return const_cast<void*>(tmpl);
}

// The finished template in a block of malloc; null when there is none.
void* CopyOut(CByteBuffer& output, unsigned* outSize) {
    void* copy = std::malloc(output.Size());
    if (copy == nullptr)
        return nullptr;
    std::memcpy(copy, output.Data(), output.Size());
    *outSize = output.Size();
    return copy;
}

size_t TextBytes(const KTWCHAR* text) { return (std::char_traits<KTWCHAR>::length(text) + 1) * sizeof(KTWCHAR); }

// A title or face name with its terminator: the translation found by
// `prefix` and then plain, else the text itself. An empty text stays empty.
void AppendText(CByteBuffer& output, const KTWCHAR* text, const KTWCHAR* prefix) {
    const KTWCHAR* shown = *text != 0 ? Supp_LookupKeyedW(text, prefix) : text;
    if (shown == nullptr || *shown == 0)
        shown = text;
    output.Append(shown, TextBytes(shown));
}

// The dictionary's font in place of the template's. The weight of the
// template's font is kept: the dictionary has none of its own. Italic is
// cleared, the character set is the dictionary's.
void AppendFont(CByteBuffer& output, const CTemplateWalk& walk, const TemplateHeader& header) {
    const CSuppDictionary& dictionary = SuppDictionary();
    const WORD pointSize = static_cast<WORD>(dictionary.fontSize);
    output.Append(&pointSize, sizeof pointSize);
    if (header.form->extended) {
        const WORD weight = ReadTemplateWord(walk.At(header.fontFixedPart), kFontWeightOffset);
        const WORD italicAndCharset = static_cast<WORD>(dictionary.charset << 8);
        output.Append(&weight, sizeof weight);
        output.Append(&italicAndCharset, sizeof italicAndCharset);
    }
    AppendText(output, dictionary.fontName, KTW(""));
}

// The translation pass; false when the template does not hold together.
bool WriteTranslated(const void* tmpl, size_t size, const char* prefix, CByteBuffer& output) {
    CTemplateWalk walk(tmpl, size);
    TemplateHeader header;
    if (!walk.ReadHeader(header))
        return false;
    // A null prefix reads as the empty one.
    const CXStringW keyPrefix(prefix);

    output.Append(walk.Bytes(), header.title.offset);
    AppendText(output, walk.Text(header.title), keyPrefix);
    if (header.hasFont)
        AppendFont(output, walk, header);
    for (unsigned i = 0; i < header.itemCount; ++i) {
        TemplateItem item;
        if (!walk.ReadItem(item))
            return false;
        output.PadTo(kItemAlignment);
        output.Append(walk.Bytes() + item.offset, item.classField.span.End() - item.offset);
        if (!item.title.isOrdinal && item.TranslatesTitle())
            AppendText(output, walk.Text(item.title.span), keyPrefix);
        else
            output.Append(walk.At(item.title.span), item.title.span.size);
        output.Append(walk.At(item.creationData), item.creationData.size);
    }
    return true;
}

// Moves each edge of the control by its own offset, in 16-bit arithmetic:
// the size follows from the moved right and bottom edges.
void MoveControl(BYTE* fixedPart, const TemplateForm& form, const CIRect& edges) {
    const auto field = [&](size_t offset) { return static_cast<std::int16_t>(ReadTemplateWord(fixedPart, offset)); };
    const auto store = [&](size_t offset, std::int64_t value) {
        WriteTemplateWord(fixedPart, offset, static_cast<WORD>(value & 0xFFFF));
    };
    const std::int64_t x = field(form.itemX) + std::int64_t{edges.left};
    const std::int64_t y = field(form.itemY) + std::int64_t{edges.top};
    const std::int64_t right = field(form.itemX) + field(form.itemCx) + std::int64_t{edges.right};
    const std::int64_t bottom = field(form.itemY) + field(form.itemCy) + std::int64_t{edges.bottom};
    store(form.itemX, x);
    store(form.itemY, y);
    store(form.itemCx, right - x);
    store(form.itemCy, bottom - y);
}

// In unsigned 32-bit arithmetic, which wraps where a signed sum would overflow.
void AddToWord(CByteBuffer& output, size_t offset, LONG delta) {
    const std::uint32_t sum = ReadTemplateWord(output.Data(), offset) + static_cast<std::uint32_t>(delta);
    WriteTemplateWord(output.Data(), offset, static_cast<WORD>(sum & 0xFFFF));
}

// The layout pass: the template with the dialog's size and its controls'
// edges moved, texts and font as they were.
bool WriteLaidOut(const void* tmpl, size_t size, KTDlgPos& layout, CByteBuffer& output) {
    CTemplateWalk walk(tmpl, size);
    TemplateHeader header;
    if (!walk.ReadHeader(header))
        return false;
    output.Append(walk.Bytes(), header.end);
    AddToWord(output, header.form->cx, layout.size.cx);
    AddToWord(output, header.form->cy, layout.size.cy);
    CByteBuffer fixedPart(kItemScratchCapacity, kItemScratchGrowStep);
    for (unsigned i = 0; i < header.itemCount; ++i) {
        TemplateItem item;
        if (!walk.ReadItem(item))
            return false;
        output.PadTo(kItemAlignment);
        fixedPart.Clear();
        fixedPart.Append(walk.Bytes() + item.offset, header.form->itemFixedPart);
        CIRect edges;
        if (layout.items.Lookup(static_cast<int>(i), edges))
            MoveControl(fixedPart.Data(), *header.form, edges);
        output.Append(fixedPart.Data(), fixedPart.Size());
        output.Append(walk.At(item.classField.span), item.creationData.End() - item.classField.span.offset);
    }
    return true;
}

// Bytes from `tmpl` to the end of the address space: a template taken at its
// word.
size_t Unbounded(const void* tmpl) {
    return std::numeric_limits<std::uintptr_t>::max() - reinterpret_cast<std::uintptr_t>(tmpl);
}

}  // namespace

void* RewriteDialogTemplate(const void* tmpl, size_t size, unsigned* outSize, const char* prefix) {
    if (SuppDictionary().texts.GetCount() == 0)
        return HandBack(tmpl, outSize);
    try {
        CByteBuffer output(kOutputCapacity, kOutputGrowStep);
        if (!WriteTranslated(tmpl, size, prefix, output))
            return HandBack(tmpl, outSize);
        return CopyOut(output, outSize);
    } catch (const CXMemException&) {
        return nullptr;
    }
}

// An empty dictionary leaves dialogs as they are, layouts or not.
void* LayoutDialogTemplate(const void* tmpl, size_t size, unsigned keyHash, unsigned* outSize, const char* prefix) {
    CSuppDictionary& dictionary = SuppDictionary();
    KTDlgPos* layout = nullptr;
    if (dictionary.texts.GetCount() == 0)
        return HandBack(tmpl, outSize);
    if (!dictionary.dialogs.Lookup(static_cast<int>(keyHash), layout) || layout == nullptr)
        return RewriteDialogTemplate(tmpl, size, outSize, prefix);
    try {
        CByteBuffer laidOut(kOutputCapacity, kOutputGrowStep);
        CByteBuffer output(kOutputCapacity, kOutputGrowStep);
        if (!WriteLaidOut(tmpl, size, *layout, laidOut) ||
            !WriteTranslated(laidOut.Data(), laidOut.Size(), prefix, output))
            return HandBack(tmpl, outSize);
        return CopyOut(output, outSize);
    } catch (const CXMemException&) {
        return nullptr;
    }
}

}  // namespace kt

void* Supp_RewriteDialog(const void* tmpl, unsigned* outSize, const char* prefix) {
    return kt::RewriteDialogTemplate(tmpl, kt::Unbounded(tmpl), outSize, prefix);
}

void* Supp_LayoutDialog(const void* tmpl, unsigned keyHash, unsigned* outSize, const char* prefix) {
    return kt::LayoutDialogTemplate(tmpl, kt::Unbounded(tmpl), keyHash, outSize, prefix);
}
