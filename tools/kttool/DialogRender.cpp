#include "tools/kttool/DialogRender.h"

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <unordered_set>

#include "kticore/core/Exception.h"
#include "kticore/strings/XString.h"
#include "kticore/translation/DialogTemplates.h"
#include "tools/kttool/AnsiText.h"
#include "tools/kttool/ModuleTexts.h"
#include "tools/kttool/ResourceKeys.h"
#include "tools/kttool/TextRoom.h"
#include "tools/kttool/WldEntries.h"
#include "tools/kttool/WldText.h"
#include "tools/picture/WindowPicture.h"
#include "translation/DialogLayouts.h"
#include "translation/DialogTemplate.h"
#include "translation/Lookup.h"
#include "translation/WldFile.h"

namespace kttool {
namespace {

// Long enough for the dialog and its controls to paint.
constexpr DWORD kPaintMilliseconds = 200;

constexpr KTWCHAR kLayoutExtension[] = KTW("dlg");

BOOL CALLBACK AddName(HMODULE, LPCWSTR, LPWSTR name, LONG_PTR names) {
    reinterpret_cast<std::vector<ResourceName>*>(names)->push_back(
        IS_INTRESOURCE(name) ? ResourceName::Number(LOWORD(reinterpret_cast<ULONG_PTR>(name)))
                             : ResourceName{false, 0, name});
    return TRUE;
}

const wchar_t* Identifier(const ResourceName& name) {
    return name.isNumber ? MAKEINTRESOURCEW(name.number) : name.text.c_str();
}

// A template on a DWORD boundary, as the dialog manager wants it.
using TemplateCopy = std::vector<DWORD>;

TemplateCopy CopyOf(const void* bytes, size_t size) {
    TemplateCopy copy((size + sizeof(DWORD) - 1) / sizeof(DWORD));
    std::memcpy(copy.data(), bytes, size);
    return copy;
}

// The template as a patched module gets it: translated under its resource
// key, with its layout.
TemplateCopy ServedTemplate(const void* resource, size_t size, const std::string& prefix, DWORD keyHash) {
    unsigned servedSize = 0;
    void* served = Supp_LayoutDialog(resource, keyHash, &servedSize, prefix.c_str());
    if (served == nullptr)
        throw std::bad_alloc();
    if (servedSize == 0)
        return CopyOf(resource, size);
    TemplateCopy copy = CopyOf(served, servedSize);
    std::free(served);
    return copy;
}

// Made a hidden top-level window, whatever the dialog is in its module: a
// child dialog has no parent here.
void MakeHiddenPopup(TemplateCopy& tmpl) {
    if (tmpl.empty())
        return;  // the dialog manager refuses it
    auto* bytes = reinterpret_cast<std::uint8_t*>(tmpl.data());
    WORD signature = 0;
    std::memcpy(&signature, bytes + kt::kSignatureOffset, sizeof signature);
    const size_t offset = signature == kt::kExtendedSignature ? kt::kExtendedForm.style : kt::kClassicForm.style;
    if (tmpl.size() * sizeof(DWORD) < offset + sizeof(DWORD))
        return;  // too short for its header: the dialog manager refuses it
    std::uint8_t* field = bytes + offset;
    DWORD style = 0;
    std::memcpy(&style, field, sizeof style);
    if ((style & WS_CHILD) != 0)
        style = (style & ~WS_CHILD) | WS_POPUP;
    style &= ~WS_VISIBLE;
    std::memcpy(field, &style, sizeof style);
}

INT_PTR CALLBACK DoNothing(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

RECT PlaceIn(HWND dialog, HWND control) {
    RECT place;
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

// A control's rectangle in the picture, which starts at the frame.
RECT PlaceInPicture(HWND dialog, HWND control) {
    RECT frame;
    RECT place;
    GetWindowRect(dialog, &frame);
    GetWindowRect(control, &place);
    OffsetRect(&place, -frame.left, -frame.top);
    return place;
}

// Every text the dictionary gives; empty without a dictionary.
using Translations = std::unordered_set<std::wstring>;

Translations TranslationsOfDictionary() {
    Translations translations;
    CTMapPosition position;
    while (kt::CContext** entry = kt::SuppDictionary().texts.NextValue(position))
        translations.insert((*entry)->WideForm());
    return translations;
}

void NoteEscape(HWND window, std::string position, const Translations& translations,
                RenderedDialog& rendered) {
    std::wstring text = WindowText(window);
    if (!translations.empty() && !text.empty() && translations.count(text) == 0)
        rendered.escapes.push_back({std::move(position), std::move(text)});
}

// The controls' places, the texts that do not fit in the dialog's font, and
// those that escaped translation.
void Measure(HWND dialog, const Translations& translations, RenderedDialog& rendered,
             std::vector<RECT>& outlines) {
    NoteEscape(dialog, "caption", translations, rendered);
    auto font = reinterpret_cast<HFONT>(SendMessageW(dialog, WM_GETFONT, 0, 0));
    if (font == nullptr)
        font = static_cast<HFONT>(GetStockObject(SYSTEM_FONT));
    RECT units = {0, 0, 4, 0};
    MapDialogRect(dialog, &units);
    rendered.fourUnits = units.right;
    RECT client;
    GetClientRect(dialog, &client);
    rendered.clientWidth = client.right;
    // The dialog manager makes the controls in template order, each below
    // the ones before.
    for (HWND control = GetWindow(dialog, GW_CHILD); control != nullptr; control = GetWindow(control, GW_HWNDNEXT)) {
        const size_t position = rendered.controls.size();
        rendered.controls.push_back(PlaceIn(dialog, control));
        NoteEscape(control, "control " + std::to_string(position), translations, rendered);
        const int missing = MissingWidth(dialog, control, font);
        if (missing == 0)
            continue;
        const int dialogUnits = (missing * 4 + rendered.fourUnits - 1) / rendered.fourUnits;
        rendered.overflows.push_back({position, dialogUnits, WindowText(control)});
        outlines.push_back(PlaceInPicture(dialog, control));
    }
}

// Shown at the screen's top left below every other window, without taking
// the focus: Wine paints no pixels for a window off the screen, and the
// picture copies what is painted.
void ShowForPicture(HWND dialog) {
    const int left = GetSystemMetrics(SM_XVIRTUALSCREEN);
    const int top = GetSystemMetrics(SM_YVIRTUALSCREEN);
    SetWindowPos(dialog, HWND_BOTTOM, left, top, 0, 0, SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    UpdateWindow(dialog);
    PumpMessages(kPaintMilliseconds);
}

std::string PicturePath(const std::string& directory, const RenderedDialog& rendered) {
    const std::string& file = rendered.moduleFile;
    return directory + "/" + file.substr(0, file.find_last_of('.')) + "_" + Describe(rendered.name) + ".png";
}

RenderedDialog RenderDialog(HMODULE module, const std::string& path, const ResourceName& name,
                            const Translations& translations, const std::string& pictures) {
    RenderedDialog rendered;
    rendered.moduleFile = ModuleFileName(path);
    rendered.name = name;
    ModuleText dialogText;
    dialogText.kind = kSuppKindDialog;
    dialogText.resource = name;
    const std::string prefix = Narrow(KeyPrefix(ModuleKeyName(path), dialogText), CP_ACP);
    rendered.keyHash = Supp_HashKey(prefix.c_str());

    HRSRC found = FindResourceW(module, Identifier(name), MAKEINTRESOURCEW(kDialogType));
    HGLOBAL loaded = found != nullptr ? LoadResource(module, found) : nullptr;
    if (loaded == nullptr)
        return rendered;
    TemplateCopy tmpl = ServedTemplate(LockResource(loaded), SizeofResource(module, found), prefix, rendered.keyHash);
    MakeHiddenPopup(tmpl);
    HWND dialog = CreateDialogIndirectParamW(module, reinterpret_cast<LPCDLGTEMPLATEW>(tmpl.data()), nullptr,
                                             DoNothing, 0);
    if (dialog == nullptr)
        return rendered;
    rendered.created = true;
    std::vector<RECT> outlines;
    Measure(dialog, translations, rendered, outlines);
    bool saved = true;
    if (!pictures.empty()) {
        ShowForPicture(dialog);
        saved = SaveWindowPicture(dialog, Wide(PicturePath(pictures, rendered)).c_str(), outlines);
    }
    DestroyWindow(dialog);
    if (!saved)
        throw std::runtime_error(PicturePath(pictures, rendered) + ": cannot be written");
    return rendered;
}

}  // namespace

std::string DialogName(const RenderedDialog& dialog) {
    return dialog.moduleFile + " dialog " + Describe(dialog.name);
}

std::string OverflowName(const RenderedDialog& dialog, const Overflow& overflow) {
    return DialogName(dialog) + " control " + std::to_string(overflow.position) + " \"" + Printable(overflow.text) +
           "\"";
}

std::string EscapeName(const RenderedDialog& dialog, const Escape& escape) {
    return DialogName(dialog) + " " + escape.position + " \"" + Printable(escape.text) + "\"";
}

std::vector<RenderedDialog> RenderDialogs(const std::string& path, const std::string& pictures) {
    HMODULE module = LoadLibraryExW(Wide(path).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    if (module == nullptr)
        throw std::runtime_error(path + ": cannot be loaded as a module");
    std::vector<ResourceName> names;
    EnumResourceNamesW(module, MAKEINTRESOURCEW(kDialogType), AddName, reinterpret_cast<LONG_PTR>(&names));
    std::vector<RenderedDialog> dialogs;
    try {
        const Translations translations = TranslationsOfDictionary();
        for (const ResourceName& name : names)
            dialogs.push_back(RenderDialog(module, path, name, translations, pictures));
    } catch (...) {
        FreeLibrary(module);
        throw;
    }
    FreeLibrary(module);
    return dialogs;
}

std::string LoadTranslation(const std::string& wld, const std::string& dlg) {
    kt::CSuppDictionary& dictionary = kt::SuppDictionary();
    if (!wld.empty()) {
        ReadWldEntries(wld);  // refuses a file that is no dictionary
        try {
            kt::LoadWldFile(dictionary, Wide(wld).c_str());
        } catch (const CXFileException&) {
            throw std::runtime_error(wld + ": cannot be read");
        }
    }
    if (!dlg.empty()) {
        if (kt::LoadDialogLayouts(dictionary, Wide(dlg).c_str()) == 0)
            throw std::runtime_error(dlg + ": cannot be read");
        return dlg;
    }
    if (wld.empty())
        return {};
    CXStringW twin(Wide(wld).c_str());
    twin.ChangeFileExt(kLayoutExtension);
    return kt::LoadDialogLayouts(dictionary, twin) != 0
               ? Narrow(static_cast<const KTWCHAR*>(twin), CP_ACP)
               : std::string();
}

}  // namespace kttool
