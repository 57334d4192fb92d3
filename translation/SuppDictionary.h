// The one dictionary of the process: the translations read from `wld` files,
// the dialog layouts read from `dlg` files, and the font of translated
// dialogs. A static object of the library, reached only through the Supp_
// functions.
#pragma once

#include "kticore/core/Map.h"
#include "kticore/strings/XString.h"
#include "kticore/strings/XStringW.h"

namespace kt {

// One entry: the source text and its translation as the file gave them
// (escapes undone), and the translation as wide text, made at first use.
struct CContext {
    CXString key;
    CXString value;
    CXStringW wide;
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

struct CSuppDictionary {
    CSuppDictionary();
    ~CSuppDictionary();
    CSuppDictionary(const CSuppDictionary&) = delete;
    CSuppDictionary& operator=(const CSuppDictionary&) = delete;

    DWORD initialised = 0;
    DWORD charset = 0;
    DWORD fontSize = 0;
    KTWCHAR fontName[kFontNameCapacity] = {};
    BYTE replaceFont = 1;
    HFONT font = nullptr;
    CTMap<const KTWCHAR*, CContext*> texts;
    CTMap<int, KTDlgPos*> dialogs;
    DWORD codePage = 0;
};

// The process's dictionary.
KTCORE_API CSuppDictionary& SuppDictionary();

}  // namespace kt
