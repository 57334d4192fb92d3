#include "Probe.h"

#include <windows.h>

#include <cstdio>

#include "Notes.h"
#include "NotesIds.h"
#include "Print.h"
#include "Reading.h"
#include "Report.h"

namespace {

constexpr int kTextCapacity = 256;

HMODULE App() { return GetModuleHandleW(nullptr); }

std::wstring TextOf(HWND window) {
    wchar_t text[kTextCapacity] = {};
    GetWindowTextW(window, text, kTextCapacity);
    return text;
}

void ReadWindow(HWND window, Report& report) {
    report[ItemName(App(), "window", 0, "caption")] = TextOf(window);
    report[ItemName(App(), "window", 0, "status")] = TextOf(GetWindow(window, GW_CHILD));
    ReadMenu(GetMenu(window), ItemName(App(), "menu", IDM_MAIN, "window"), report);
    DialogRead note = {&report, ItemName(App(), "dialog", IDD_NOTE, "DialogBoxParamW")};
    OpenNoteDialog(window, ReadModalDialog, reinterpret_cast<LPARAM>(&note));
    ReadMessageBox(ItemName(App(), "box", 0, "MessageBoxA"), report, [window] { ShowAbout(window); });
}

// What printing brings: the module, loaded only now, its dialog and its
// string.
bool ReadPrinting(HWND window, Report& report) {
    report[ItemName(App(), "module", 0, "print module loaded at start")] =
        GetModuleHandleW(kPrintModule) != nullptr ? L"yes" : L"no";
    HMODULE print = PrintModule();
    if (print == nullptr)
        return false;
    DialogRead dialog = {&report, ItemName(print, "dialog", IDD_PRINT, "DialogBoxParamW")};
    OpenPrintDialog(window, ReadModalDialog, reinterpret_cast<LPARAM>(&dialog));
    const auto loadString = PrintFunction<PrintLoadString>(print, kPrintLoadString);
    wchar_t text[kTextCapacity] = {};
    loadString(IDS_PRINT_DONE, text, kTextCapacity);
    report[ItemName(print, "string", IDS_PRINT_DONE, "LoadStringW")] = text;
    return true;
}

}  // namespace

int RunProbe(const wchar_t* reportPath) {
    HWND window = CreateNotesWindow();
    Report report;
    ReadWindow(window, report);
    const bool printed = ReadPrinting(window, report);
    DestroyWindow(window);
    if (reportPath == nullptr) {
        PrintReport(stdout, report);
        return printed ? 0 : 1;
    }
    std::FILE* out = _wfopen(reportPath, L"wb");
    if (out == nullptr)
        return 1;
    WriteReport(out, "run", report);
    std::fclose(out);
    return printed ? 0 : 1;
}
