#include "Probe.h"

#include <windows.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <thread>
#include <vector>

#include "AppIds.h"
#include "Forms.h"
#include "MainDialog.h"
#include "Panel.h"
#include "Reading.h"
#include "Report.h"
#include "kticore/translation/Interception.h"
#include "kticore/translation/Translation.h"

namespace {

constexpr int kTextCapacity = 256;
constexpr unsigned kStressThreads = 4;
const LPCWSTR kDialogTypeW = MAKEINTRESOURCEW(5);  // RT_DIALOG

HMODULE App() { return GetModuleHandleW(nullptr); }

// The module that holds `function`.
HMODULE ModuleOf(const void* function) {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<LPCWSTR>(function), &module);
    return module;
}

HMODULE Panel() { return ModuleOf(reinterpret_cast<const void*>(&Panel_LoadMenu)); }
HMODULE Forms() { return ModuleOf(reinterpret_cast<const void*>(&Forms_Template)); }

std::wstring FromAnsi(const char* text) {
    wchar_t wide[kTextCapacity] = {};
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide, kTextCapacity);
    return wide;
}

// The application's own resource block, as it would fetch it itself.
const void* LoadedA(LPCSTR type, unsigned id) {
    return LockResource(LoadResource(App(), FindResourceA(App(), MAKEINTRESOURCEA(id), type)));
}

void ReadStrings(Report& report) {
    for (unsigned id : {IDS_GREETING, IDS_READY}) {
        wchar_t wide[kTextCapacity] = {};
        LoadStringW(App(), id, wide, kTextCapacity);
        report[ItemName(App(), "string", id, "LoadStringW")] = wide;
        char narrow[kTextCapacity] = {};
        LoadStringA(App(), id, narrow, kTextCapacity);
        report[ItemName(App(), "string", id, "LoadStringA")] = FromAnsi(narrow);
        wchar_t source[kTextCapacity] = {};
        LoadStringNotTransW(App(), id, source, kTextCapacity);
        report[ItemName(App(), "notrans", id, "LoadStringNotTransW")] = source;
    }
    wchar_t panel[kTextCapacity] = {};
    Panel_LoadString(IDS_PANEL_TITLE, panel, kTextCapacity);
    report[ItemName(Panel(), "string", IDS_PANEL_TITLE, "LoadStringW")] = panel;
    wchar_t form[kTextCapacity] = {};
    Forms_LoadString(IDS_FORM_NOTE, form, kTextCapacity);
    report[ItemName(Forms(), "string", IDS_FORM_NOTE, "LoadStringW")] = form;
}

void ReadMenus(Report& report) {
    const struct {
        const char* way;
        HMENU (*load)();
    } kLoads[] = {
        {"LoadMenuW", [] { return LoadMenuW(App(), MAKEINTRESOURCEW(IDM_MAIN)); }},
        {"LoadMenuA", [] { return LoadMenuA(App(), MAKEINTRESOURCEA(IDM_MAIN)); }},
        {"LoadMenuIndirectA", [] { return LoadMenuIndirectA(LoadedA(RT_MENU, IDM_MAIN)); }},
    };
    for (const auto& load : kLoads) {
        HMENU menu = load.load();
        ReadMenu(menu, ItemName(App(), "menu", IDM_MAIN, load.way), report);
        DestroyMenu(menu);
    }
    HMENU panel = Panel_LoadMenu();
    ReadMenu(panel, ItemName(Panel(), "menu", IDM_PANEL, "LoadMenuW"), report);
    DestroyMenu(panel);
}

INT_PTR CALLBACK ModelessProc(HWND, UINT message, WPARAM, LPARAM) { return message == WM_INITDIALOG; }

// Each way of opening a dialog: a modal way returns once the dialog was read,
// a modeless one gives the window. The dialog functions that take a
// template are handed the forms module's, as it holds it: their own
// translation is what shows.
struct Opening {
    const char* way;
    bool formsTemplate;
    INT_PTR (*modal)(LPARAM read);
    HWND (*modeless)();
};

const Opening kOpenings[] = {
    {"DialogBoxParamA", false,
     [](LPARAM read) { return DialogBoxParamA(App(), MAKEINTRESOURCEA(IDD_MAIN), nullptr, ReadModalDialog, read); },
     nullptr},
    {"DialogBoxParamW", false,
     [](LPARAM read) { return DialogBoxParamW(App(), MAKEINTRESOURCEW(IDD_MAIN), nullptr, ReadModalDialog, read); },
     nullptr},
    {"DialogBoxIndirectParamA", true,
     [](LPARAM read) {
         const auto* form = reinterpret_cast<LPCDLGTEMPLATEA>(Forms_Template(IDD_FORM));
         return DialogBoxIndirectParamA(Forms(), form, nullptr, ReadModalDialog, read);
     },
     nullptr},
    {"DialogBoxIndirectParamW", true,
     [](LPARAM read) {
         return DialogBoxIndirectParamW(Forms(), Forms_Template(IDD_FORM), nullptr, ReadModalDialog, read);
     },
     nullptr},
    {"CreateDialogParamA", false, nullptr,
     [] { return CreateDialogParamA(App(), MAKEINTRESOURCEA(IDD_MAIN), nullptr, ModelessProc, 0); }},
    {"CreateDialogParamW", false, nullptr,
     [] { return CreateDialogParamW(App(), MAKEINTRESOURCEW(IDD_MAIN), nullptr, ModelessProc, 0); }},
    {"CreateDialogIndirectParamA", true, nullptr,
     [] {
         const auto* form = reinterpret_cast<LPCDLGTEMPLATEA>(Forms_Template(IDD_FORM));
         return CreateDialogIndirectParamA(Forms(), form, nullptr, ModelessProc, 0);
     }},
    {"CreateDialogIndirectParamW", true, nullptr,
     [] { return CreateDialogIndirectParamW(Forms(), Forms_Template(IDD_FORM), nullptr, ModelessProc, 0); }},
    // The main dialog found, loaded and locked by hand, and copied as long as
    // SizeofResource says.
    {"CopiedTemplate", false, nullptr,
     [] {
         HRSRC found = FindResourceW(App(), MAKEINTRESOURCEW(IDD_MAIN), kDialogTypeW);
         HGLOBAL loaded = LoadResource(App(), found);
         const DWORD size = SizeofResource(App(), found);
         std::vector<DWORD> copy((size + sizeof(DWORD) - 1) / sizeof(DWORD));
         std::memcpy(copy.data(), LockResource(loaded), size);
         FreeResource(loaded);
         return CreateDialogIndirectParamW(App(), reinterpret_cast<LPCDLGTEMPLATEW>(copy.data()), nullptr,
                                           ModelessProc, 0);
     }},
};

void ReadDialogs(Report& report) {
    for (const Opening& opening : kOpenings) {
        const std::string item = opening.formsTemplate ? ItemName(Forms(), "dialog", IDD_FORM, opening.way)
                                                       : ItemName(App(), "dialog", IDD_MAIN, opening.way);
        DialogRead read = {&report, item};
        if (opening.modal != nullptr) {
            opening.modal(reinterpret_cast<LPARAM>(&read));
            continue;
        }
        HWND dialog = opening.modeless();
        ReadDialog(dialog, read.item, report);
        DestroyWindow(dialog);
    }
    DialogRead panel = {&report, ItemName(Panel(), "dialog", IDD_PANEL, "DialogBoxParamW")};
    Panel_DialogBox(nullptr, ReadModalDialog, reinterpret_cast<LPARAM>(&panel));
}

void ReadMessageBoxes(Report& report) {
    const struct {
        const char* way;
        void (*show)();
    } kBoxes[] = {
        {"MessageBoxA", [] { MessageBoxA(nullptr, kAboutText, kAboutCaption, MB_OK); }},
        {"MessageBoxExA", [] { MessageBoxExA(nullptr, kAboutText, kAboutCaption, MB_OK, 0); }},
        {"MessageBoxIndirectA",
         [] {
             MSGBOXPARAMSA params = {};
             params.cbSize = sizeof params;
             params.lpszText = kAboutText;
             params.lpszCaption = kAboutCaption;
             params.dwStyle = MB_OK;
             MessageBoxIndirectA(&params);
         }},
    };
    for (const auto& box : kBoxes)
        ReadMessageBox(ItemName(App(), "box", 0, box.way), report, box.show);
}

// Everything but the message boxes, which the stress run leaves out.
void ReadResources(Report& report) {
    ReadStrings(report);
    ReadMenus(report);
    ReadDialogs(report);
}

struct StressThread {
    Report first;
    Report odd;  // each item's first text that differed from its first read
    unsigned iterations = 0;
};

void CompareWithFirst(StressThread& thread, const Report& report) {
    for (const auto& [item, text] : report) {
        const auto first = thread.first.find(item);
        if (first == thread.first.end() || text != first->second)
            thread.odd.emplace(item, text);
    }
}

// Strings and menus load in microseconds, a dialog takes milliseconds: many
// loads go with each round of dialogs, so that the threads meet in both.
void Stress(StressThread& thread, ULONGLONG until) {
    constexpr int kLoadsPerDialogRound = 50;
    do {
        Report everything;
        ReadResources(everything);
        if (thread.iterations++ == 0)
            thread.first = everything;
        else
            CompareWithFirst(thread, everything);
        for (int load = 0; load < kLoadsPerDialogRound; ++load) {
            Report loads;
            ReadStrings(loads);
            ReadMenus(loads);
            CompareWithFirst(thread, loads);
        }
    } while (GetTickCount64() < until);
}

}  // namespace

int RunProbe(const wchar_t* reportPath) {
    std::FILE* out = _wfopen(reportPath, L"wb");
    if (out == nullptr)
        return 1;
    const struct {
        const char* phase;
        int enable;
    } kPhases[] = {{"on", 1}, {"off", 0}, {"again", 1}};
    for (const auto& phase : kPhases) {
        Supp_SetTranslationEnable(phase.enable);
        Report report;
        ReadResources(report);
        ReadMessageBoxes(report);
        WriteReport(out, phase.phase, report);
    }
    std::fclose(out);
    return 0;
}

int RunStress(int seconds, const wchar_t* reportPath) {
    std::FILE* out = _wfopen(reportPath, L"wb");
    if (out == nullptr)
        return 1;
    const ULONGLONG until = GetTickCount64() + 1000ull * static_cast<unsigned>(seconds);
    std::vector<StressThread> results(kStressThreads);
    std::vector<std::thread> threads;
    for (StressThread& result : results)
        threads.emplace_back(Stress, std::ref(result), until);
    Report counts;
    for (unsigned n = 0; n < kStressThreads; ++n) {
        threads[n].join();
        WriteReport(out, ("stress" + std::to_string(n)).c_str(), results[n].first);
        WriteReport(out, ("odd" + std::to_string(n)).c_str(), results[n].odd);
        counts[std::to_string(n) + "|iterations"] = std::to_wstring(results[n].iterations);
    }
    WriteReport(out, "count", counts);
    std::fclose(out);
    return 0;
}
