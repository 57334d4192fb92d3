// LoadMenu in a patched module: the real menu, with its items translated in
// place, keyed by the menu's resource.
#include <cstdint>
#include <string>

#include "kticore/strings/XStringW.h"
#include "kticore/translation/Translation.h"
#include "translation/Lookup.h"
#include "translation/intercept/Interceptors.h"

namespace kt::intercept {
namespace {

template <class Unit>
std::size_t NameLength(const Unit* name) {
    return IS_INTRESOURCE(name) ? 0 : std::char_traits<Unit>::length(name);
}

// The key prefix of menu `name` of `module`; empty when the module's path
// cannot be read.
template <class Unit, class MakeKey>
std::basic_string<Unit> MenuPrefix(MakeKey makeKey, HINSTANCE module, const Unit* name) {
    std::basic_string<Unit> prefix(kKeyPrefixRoom + NameLength(name), Unit(0));
    makeKey(module, name, prefix.data(), kSuppKindMenu);
    prefix.resize(std::char_traits<Unit>::length(prefix.c_str()));
    return prefix;
}

HMENU TranslateMenu(HMENU menu, const KTWCHAR* prefix) {
    Supp_TranslateMenuKeyed(menu, prefix[0] != 0 ? prefix : nullptr);
    return menu;
}

// `menu`, translated by `translate` where that can be done.
template <class Translate>
HMENU Translated(HMENU menu, Translate translate) {
    return OrUntranslated(translate, [&] { return menu; });
}

}  // namespace

HMENU WINAPI LoadMenuA(HINSTANCE module, LPCSTR name) {
    HMENU menu = KT_REAL(LoadMenuA)(module, name);
    if (!Supp_IsTranslationEnable())
        return menu;
    return Translated(menu, [&] {
        return TranslateMenu(menu, CXStringW(MenuPrefix(Supp_MakeKeyA, module, name).c_str()));
    });
}

HMENU WINAPI LoadMenuW(HINSTANCE module, LPCWSTR name) {
    HMENU menu = KT_REAL(LoadMenuW)(module, name);
    if (!Supp_IsTranslationEnable())
        return menu;
    return Translated(menu, [&] { return TranslateMenu(menu, MenuPrefix(Supp_MakeKeyW, module, name).c_str()); });
}

HMENU WINAPI LoadMenuIndirectA(const MENUTEMPLATEA* menuTemplate) {
    HMENU menu = KT_REAL(LoadMenuIndirectA)(menuTemplate);
    if (!Supp_IsTranslationEnable())
        return menu;
    return Translated(menu, [&] {
        Supp_Translate(menu);
        return menu;
    });
}

}  // namespace kt::intercept
