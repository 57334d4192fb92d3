// Menus are translated after they have been loaded: a walk over the items,
// each written back with its text and its graying and check mark, sub-menus
// walked in turn.
#include "kticore/translation/Translation.h"
#include "translation/Lookup.h"
#include "translation/SuppDictionary.h"

namespace {

// The item flags that survive a walk; every other state bit is dropped.
constexpr UINT kKeptItemFlags = MF_GRAYED | MF_CHECKED;
constexpr UINT kNoSuchItem = static_cast<UINT>(-1);

// The text buffers of the two walks, in characters.
constexpr unsigned kKeyedMenuCapacity = 512;
constexpr unsigned kPlainMenuCapacity = 256;

bool DictionaryIsEmpty() { return kt::SuppDictionary().texts.GetCount() == 0; }

// `translate(buffer, capacity)` replaces an item's text in the buffer; it may
// fill all of it without a terminator, so the buffer holds one unit more.
template <unsigned kCapacity, class Translate>
void WalkMenu(HMENU menu, const Translate& translate) {
    const int count = GetMenuItemCount(menu);
    for (int i = 0; i < count; ++i) {
        const UINT position = static_cast<UINT>(i);
        KTWCHAR text[kCapacity + 1];
        // A separator, or an item without text.
        if (GetMenuStringW(menu, position, text, kCapacity, MF_BYPOSITION) == 0)
            continue;
        translate(text, kCapacity);
        text[kCapacity] = 0;
        const UINT state = GetMenuState(menu, position, MF_BYPOSITION);
        const UINT flags = state == kNoSuchItem ? 0 : state & kKeptItemFlags;
        if (HMENU submenu = GetSubMenu(menu, i)) {
            ModifyMenuW(menu, position, flags | MF_BYPOSITION | MF_POPUP,
                        reinterpret_cast<UINT_PTR>(submenu), text);
            WalkMenu<kCapacity>(submenu, translate);
            continue;
        }
        const UINT id = GetMenuItemID(menu, i);
        if (state != kNoSuchItem && (state & MF_POPUP) == 0 && id != 0)
            ModifyMenuW(menu, position, flags | MF_BYPOSITION, id, text);
    }
}

}  // namespace

int Supp_TranslateMenuKeyed(HMENU menu, const KTWCHAR* prefix) {
    if (!DictionaryIsEmpty())
        WalkMenu<kKeyedMenuCapacity>(menu, [prefix](KTWCHAR* text, unsigned capacity) {
            Supp_TranslateKeyedW(text, capacity, prefix, 0);
        });
    return 1;
}

// The walk without a prefix translates each item by its plain text.
int Supp_Translate(HMENU menu) {
    if (!DictionaryIsEmpty())
        WalkMenu<kPlainMenuCapacity>(
            menu, [](KTWCHAR* text, unsigned capacity) { Supp_TranslateBufferW(text, capacity); });
    return 1;
}
