// FindResource and its companions in a patched module: a menu, a dialog or a
// string table block is found as a record (ResourceRecords.h), and the
// record's rewritten block is what the module loads, locks and measures.
#include "kticore/translation/Translation.h"
#include "translation/ResourceRecords.h"
#include "translation/intercept/Interceptors.h"

namespace kt::intercept {
namespace {

// Without a record, the module gets the real resource: what it loads,
// locks and measures is then the system's.
template <class Name>
HRSRC Wrapped(HRSRC real, HMODULE module, Name name, const void* type) {
    return OrUntranslated([&] { return reinterpret_cast<HRSRC>(Supp_WrapResource(real, module, name, type)); },
                          [&] { return real; });
}

HRSRC RealOf(HRSRC resource) {
    return IsResourceRecord(resource) ? reinterpret_cast<SuppResource*>(resource)->real : resource;
}

}  // namespace

HRSRC WINAPI FindResourceA(HMODULE module, LPCSTR name, LPCSTR type) {
    HRSRC real = KT_REAL(FindResourceA)(module, name, type);
    return Supp_IsTranslationEnable() ? Wrapped(real, module, name, type) : real;
}

HRSRC WINAPI FindResourceW(HMODULE module, LPCWSTR name, LPCWSTR type) {
    HRSRC real = KT_REAL(FindResourceW)(module, name, type);
    return Supp_IsTranslationEnable() ? Wrapped(real, module, name, type) : real;
}

HRSRC WINAPI FindResourceExA(HMODULE module, LPCSTR type, LPCSTR name, WORD language) {
    HRSRC real = KT_REAL(FindResourceExA)(module, type, name, language);
    return Supp_IsTranslationEnable() ? Wrapped(real, module, name, type) : real;
}

HRSRC WINAPI FindResourceExW(HMODULE module, LPCWSTR type, LPCWSTR name, WORD language) {
    HRSRC real = KT_REAL(FindResourceExW)(module, type, name, language);
    return Supp_IsTranslationEnable() ? Wrapped(real, module, name, type) : real;
}

HGLOBAL WINAPI LoadResource(HMODULE module, HRSRC resource) {
    if (!Supp_IsTranslationEnable())
        return KT_REAL(LoadResource)(module, resource);
    return OrUntranslated(
        [&] { return static_cast<HGLOBAL>(Supp_LoadResource(module, reinterpret_cast<SuppResource*>(resource))); },
        [&] { return KT_REAL(LoadResource)(module, RealOf(resource)); });
}

// A loaded block is memory already, a real one of a module as much as a
// rewritten one.
LPVOID WINAPI LockResource(HGLOBAL block) {
    if (!Supp_IsTranslationEnable())
        return KT_REAL(LockResource)(block);
    return block;
}

DWORD WINAPI SizeofResource(HMODULE module, HRSRC resource) {
    if (!Supp_IsTranslationEnable() || !IsResourceRecord(resource))
        return KT_REAL(SizeofResource)(module, resource);
    return OrUntranslated([&] { return ServedResourceSize(module, reinterpret_cast<SuppResource*>(resource)); },
                          [&] { return KT_REAL(SizeofResource)(module, RealOf(resource)); });
}

// Records live until unload; freeing one does nothing.
BOOL WINAPI FreeResource(HGLOBAL block) {
    if (Supp_IsTranslationEnable() && IsResourceRecord(block))
        return TRUE;
    return KT_REAL(FreeResource)(block);
}

}  // namespace kt::intercept
