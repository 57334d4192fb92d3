// A window's own text, translated in place; its children are left alone.
#include "kticore/translation/Translation.h"
#include "translation/Lookup.h"
#include "translation/SuppDictionary.h"

namespace {
constexpr int kWindowTextCapacity = 1024;
}  // namespace

int Supp_Translate(HWND window) {
    if (kt::SuppDictionary().texts.GetCount() == 0)
        return 1;
    KTWCHAR text[kWindowTextCapacity] = {};
    GetWindowTextW(window, text, kWindowTextCapacity);
    Supp_TranslateBufferW(text, kWindowTextCapacity);
    SetWindowTextW(window, text);
    return 1;
}
