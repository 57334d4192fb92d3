#include "translation/DialogLayouts.h"

#include <cstdlib>
#include <string>

#include "kticore/core/Exception.h"
#include "kticore/params/ParamTools.h"
#include "kticore/translation/Translation.h"
#include "params/Held.h"
#include "translation/Lookup.h"

namespace kt {

namespace {

using params::Held;
using Names = CTEnum<const char*>;

constexpr char kDialogsSection[] = "Dialogs";

// The layout of one dialog section: its size, and its rectangles by the
// control's position. Values of other kinds are skipped.
KTDlgPos* LayoutOf(IParam* dialog, Names* values) {
    KTDlgPos* layout = new KTDlgPos;
    CKTVariant value;
    if (dialog->GetValue(kDialogSizeValue, &value) && value.vt == KTVT_SIZE)
        layout->size = value.sizeVal;
    const char* name = nullptr;
    while (values->Next(1, &name, nullptr)) {
        KTVariantClear(&value);
        if (dialog->GetValue(name, &value) && value.vt == KTVT_RECT) {
            const tagRECT& edges = value.rcVal;
            layout->items.Set(std::atoi(name),
                              CIRect{edges.left, edges.top, edges.right, edges.bottom});
        }
    }
    return layout;
}

void LoadModule(CSuppDictionary& dictionary, const char* module, IParam* moduleSection) {
    Held<IParam> dialogs(moduleSection->GetSection(kDialogsSection, 0));
    if (!dialogs)
        return;
    Held<Names> names(dialogs->EnumSections());
    const char* name = nullptr;
    while (names->Next(1, &name, nullptr)) {
        Held<IParam> dialog(dialogs->GetSection(name, 0));
        Held<Names> values(dialog ? dialog->EnumValues() : nullptr);
        if (!values)
            continue;
        dictionary.dialogs.Set(
            static_cast<int>(Supp_HashKey(DialogLayoutKey(module, name).c_str())),
            LayoutOf(dialog.get(), values.get()));
    }
}

}  // namespace

std::string DialogLayoutKey(const char* module, const char* name) {
    std::string key = std::string(module) + "#" + std::to_string(kSuppKindDialog);
    if (name[0] != '#')
        key += "#";
    return key + name;
}

int LoadDialogLayouts(CSuppDictionary& dictionary, const KTWCHAR* path) {
    Held<IParam> tree(new_MemParam());
    try {
        if (Param_IniFile2Param(path, tree.get()) == 0)
            return 0;
    } catch (const CXFileException&) {
        return 0;
    }
    Held<Names> modules(tree->EnumSections());
    const char* module = nullptr;
    while (modules->Next(1, &module, nullptr)) {
        Held<IParam> section(tree->GetSection(module, 0));
        if (section)
            LoadModule(dictionary, module, section.get());
    }
    return 1;
}

}  // namespace kt

// Layouts take effect in the dialog template alone; no function moves or
// restyles a live window.
void Supp_SetDialogPos(HWND, HWND, unsigned) {}

void Supp_SetDialogFont(HWND) {}
