// The one dictionary of the process: the translations read from `wld` files,
// the dialog layouts read from `dlg` files, and the font of translated
// dialogs. A static object of the library, reached only through the Supp_
// functions.
#pragma once

#include <atomic>

#include "kticore/core/Map.h"
#include "kticore/strings/XString.h"
#include "kticore/strings/XStringW.h"

namespace kt {

// One entry: the source text and its translation as the file gave them
// (escapes undone), and the translation as wide text, made at first use.
struct KTCORE_API CContext {
    CContext(const CXString& key, const CXString& value) : key(key), value(value) {}

    CXString key;
    CXString value;
    CXStringW wide;

    // The translation as wide text, converted at the first call in the code
    // page in force then. A value that converts to nothing (empty, or not
    // text of that code page) shows the key instead. Stable until unload,
    // also when threads of a host ask for it at once.
    const KTWCHAR* WideForm();

private:
    std::atomic<bool> wideMade{false};
};

// Offsets of a control's four edges, in dialog units.
struct CIRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

// The layout of one dialog: edge offsets by the control's position in the
// template, and what is added to the dialog's width and height.
struct KTDlgPos {
    CTMap<int, CIRect> items;
    SIZE size = {0, 0};
};

constexpr int kFontNameCapacity = 256;

// Buckets of the texts: a dictionary holds up to some 100,000 entries, and a
// lookup walks one chain, so the chains must stay short.
constexpr DWORD kTextBuckets = 65521;

struct KTCORE_API CSuppDictionary {
    // Chooses the font of translated dialogs from the system's.
    CSuppDictionary();
    ~CSuppDictionary();
    CSuppDictionary(const CSuppDictionary&) = delete;
    CSuppDictionary& operator=(const CSuppDictionary&) = delete;

    // The entry of `text`, or null.
    CContext* Find(const KTWCHAR* text);
    // The entry of the key that hashes to `hash`, or null.
    CContext* FindHash(DWORD hash);
    // A new entry under the wide form of `key`, unless one of that hash is
    // there already (the first definition wins); the entry of that hash.
    CContext* Add(const CXString& key, const CXString& value);

    // The code page that values are read in, 0 for the process's ANSI code
    // page. It is the code page in which narrow text becomes wide text
    // everywhere in the process, so it is kept there, once.
    DWORD CodePage() const;
    void SetCodePage(DWORD codePage);

    DWORD initialised = 0;
    DWORD charset = 0;
    DWORD fontSize = 0;
    KTWCHAR fontName[kFontNameCapacity] = {};
    BYTE replaceFont = 1;
    HFONT font = nullptr;
    CTMap<const KTWCHAR*, CContext*> texts{nullptr, kTextBuckets};
    // Grows after each entry is added, and when a module goes (its keys
    // start with its name): what a lookup found holds while this stays as
    // it was before the lookup.
    std::atomic<unsigned> generation{0};
    CTMap<int, KTDlgPos*> dialogs;
};

// The process's dictionary. Exported with its members for the tests, which
// fill it directly.
KTCORE_API CSuppDictionary& SuppDictionary();

}  // namespace kt
