// Dialogs in a patched module. A dialog opened by name is served from its
// record: keyed translation, layout, and one rewrite for the life of the
// process. A template handed in directly has no name, so plain keys alone
// apply to it, rewritten afresh at each call.
#include <cstdint>
#include <cstdlib>

#include "kticore/translation/DialogTemplates.h"
#include "kticore/translation/Translation.h"
#include "translation/ResourceRecords.h"
#include "translation/intercept/Interceptors.h"

namespace kt::intercept {
namespace {

template <class Unit>
const Unit* DialogType() {
    return reinterpret_cast<const Unit*>(kResourceTypeDialog);
}

// A modal dialog's result reaches the caller as a 32-bit value; a window
// handle fits in one anyway.
INT_PTR AsReturned(INT_PTR result) { return static_cast<std::int32_t>(result); }
HWND AsReturned(HWND window) { return window; }

// With the switch on, finds the dialog with the real FindResource, serves its
// record's block and opens the dialog from it with the real indirect form;
// nothing, as the result type has it, for a dialog that cannot be found or
// loaded.
template <class Result, class Unit, class Direct, class Find, class Open>
Result OpenServed(Direct direct, Find find, Open open, HINSTANCE module, const Unit* name, HWND parent,
                  DLGPROC procedure, LPARAM param) {
    if (!Supp_IsTranslationEnable())
        return direct(module, name, parent, procedure, param);
    HRSRC real = find(module, name, DialogType<Unit>());
    if (real == nullptr)
        return Result{};
    void* block = nullptr;
    const bool served = OrUntranslated(
        [&] {
            block = Supp_LoadResource(module, Supp_WrapResource(real, module, name, DialogType<Unit>()));
            return true;
        },
        [] { return false; });
    if (!served)  // out of memory: the dialog as it stands
        return direct(module, name, parent, procedure, param);
    if (block == nullptr)
        return Result{};
    const Result result = open(module, static_cast<LPCDLGTEMPLATE>(block), parent, procedure, param);
    KT_REAL(FreeResource)(block);
    return AsReturned(result);
}

// With the switch on, opens the dialog from a translated copy of `tmpl`,
// released once the real function has returned: the dialog manager has read
// the template by then. Where no copy could be had, from the template as it
// stands.
template <class Result, class Open>
Result OpenRewritten(Open open, HINSTANCE module, LPCDLGTEMPLATE tmpl, HWND parent, DLGPROC procedure,
                     LPARAM param) {
    if (!Supp_IsTranslationEnable() || tmpl == nullptr)
        return open(module, tmpl, parent, procedure, param);
    unsigned size = 0;
    void* copy = OrUntranslated([&] { return Supp_RewriteDialog(tmpl, &size, nullptr); },
                                [&] {
                                    size = 0;
                                    return static_cast<void*>(nullptr);
                                });
    const auto* rewritten = copy != nullptr ? static_cast<LPCDLGTEMPLATE>(copy) : tmpl;
    const Result result = open(module, rewritten, parent, procedure, param);
    if (size != 0)
        std::free(copy);
    return AsReturned(result);
}

}  // namespace

INT_PTR WINAPI DialogBoxParamA(HINSTANCE module, LPCSTR name, HWND parent, DLGPROC procedure, LPARAM param) {
    return OpenServed<INT_PTR>(KT_REAL(DialogBoxParamA), KT_REAL(FindResourceA), KT_REAL(DialogBoxIndirectParamA),
                               module, name, parent, procedure, param);
}

INT_PTR WINAPI DialogBoxParamW(HINSTANCE module, LPCWSTR name, HWND parent, DLGPROC procedure, LPARAM param) {
    return OpenServed<INT_PTR>(KT_REAL(DialogBoxParamW), KT_REAL(FindResourceW), KT_REAL(DialogBoxIndirectParamW),
                               module, name, parent, procedure, param);
}

HWND WINAPI CreateDialogParamA(HINSTANCE module, LPCSTR name, HWND parent, DLGPROC procedure, LPARAM param) {
    return OpenServed<HWND>(KT_REAL(CreateDialogParamA), KT_REAL(FindResourceA), KT_REAL(CreateDialogIndirectParamA),
                            module, name, parent, procedure, param);
}

HWND WINAPI CreateDialogParamW(HINSTANCE module, LPCWSTR name, HWND parent, DLGPROC procedure, LPARAM param) {
    return OpenServed<HWND>(KT_REAL(CreateDialogParamW), KT_REAL(FindResourceW), KT_REAL(CreateDialogIndirectParamW),
                            module, name, parent, procedure, param);
}

INT_PTR WINAPI DialogBoxIndirectParamA(HINSTANCE module, LPCDLGTEMPLATEA tmpl, HWND parent, DLGPROC procedure,
                                       LPARAM param) {
    return OpenRewritten<INT_PTR>(KT_REAL(DialogBoxIndirectParamA), module, tmpl, parent, procedure, param);
}

INT_PTR WINAPI DialogBoxIndirectParamW(HINSTANCE module, LPCDLGTEMPLATEW tmpl, HWND parent, DLGPROC procedure,
                                       LPARAM param) {
    return OpenRewritten<INT_PTR>(KT_REAL(DialogBoxIndirectParamW), module, tmpl, parent, procedure, param);
}

HWND WINAPI CreateDialogIndirectParamA(HINSTANCE module, LPCDLGTEMPLATEA tmpl, HWND parent, DLGPROC procedure,
                                       LPARAM param) {
    return OpenRewritten<HWND>(KT_REAL(CreateDialogIndirectParamA), module, tmpl, parent, procedure, param);
}

HWND WINAPI CreateDialogIndirectParamW(HINSTANCE module, LPCDLGTEMPLATEW tmpl, HWND parent, DLGPROC procedure,
                                       LPARAM param) {
    return OpenRewritten<HWND>(KT_REAL(CreateDialogIndirectParamW), module, tmpl, parent, procedure, param);
}

}  // namespace kt::intercept
