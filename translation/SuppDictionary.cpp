#include "translation/SuppDictionary.h"


#include "kticore/translation/Translation.h"
#include "platform/CriticalSection.h"
#include "platform/DialogFont.h"
#include "strings/NarrowTextCodePage.h"

namespace kt {

namespace {

// The font of a system without double-byte support: the logical dialog font,
// which the system maps to its own.
constexpr char kLogicalDialogFont[] = "MS Shell Dlg";
constexpr DWORD kLogicalDialogFontSize = 8;
// Where the stock font cannot be read.
constexpr char kSystemFont[] = "System";
constexpr DWORD kSystemFontSize = 10;

void CopyFontName(KTWCHAR* out, const char* name) {
    for (; *name != 0; ++name)
        *out++ = static_cast<KTWCHAR>(*name);
    *out = 0;
}

// Built with the library, before its entry point runs.
CSuppDictionary dictionary;

// Held while an entry's wide form is made.
sys::CriticalSection wideFormLock;

}  // namespace

// Made once: a second assignment would free the text a first caller holds.
const KTWCHAR* CContext::WideForm() {
    if (wideMade.load(std::memory_order_acquire))
        return wide;
    sys::ScopedLock hold(wideFormLock);
    if (!wideMade.load(std::memory_order_relaxed)) {
        hostMultiByteToUnicode(value, wide);
        if (*static_cast<const KTWCHAR*>(wide) == 0)
            wide = CXStringW(static_cast<const char*>(key));
        wideMade.store(true, std::memory_order_release);
    }
    return wide;
}

CSuppDictionary::CSuppDictionary() {
    if (!sys::DoubleByteCharacterSetsEnabled()) {
        CopyFontName(fontName, kLogicalDialogFont);
        fontSize = kLogicalDialogFontSize;
        return;
    }
    CopyFontName(fontName, kSystemFont);
    fontSize = kSystemFontSize;
    font = sys::StockDialogFont();
    DWORD points = 0;
    if (font != nullptr && sys::DescribeFont(font, fontName, kFontNameCapacity, points))
        fontSize = points;
}

CSuppDictionary::~CSuppDictionary() = default;

CContext* CSuppDictionary::Find(const KTWCHAR* text) {
    // An empty dictionary answers without making its table.
    if (texts.GetCount() == 0)
        return nullptr;
    CContext* entry = nullptr;
    return texts.Lookup(text, entry) ? entry : nullptr;
}

CContext* CSuppDictionary::FindHash(DWORD hash) {
    if (texts.GetCount() == 0)
        return nullptr;
    CContext* entry = nullptr;
    return texts.LookupHash(hash, entry) ? entry : nullptr;
}

CContext* CSuppDictionary::Add(const CXString& key, const CXString& value) {
    const CXStringW wideKey(key);
    if (CContext* existing = Find(wideKey))
        return existing;
    CContext* entry = new CContext(key, value);
    texts.Set(wideKey, entry);
    generation.fetch_add(1, std::memory_order_release);
    return entry;
}

DWORD CSuppDictionary::CodePage() const { return NarrowTextCodePage(); }

void CSuppDictionary::SetCodePage(DWORD codePage) { SetNarrowTextCodePage(codePage); }

CSuppDictionary& SuppDictionary() { return dictionary; }

}  // namespace kt

unsigned long Supp_GetACP() { return kt::SuppDictionary().CodePage(); }

HFONT Supp_GetFont() { return kt::SuppDictionary().font; }
