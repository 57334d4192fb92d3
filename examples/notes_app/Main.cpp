// An application that knows nothing of translation: it neither links
// kticore nor calls it. A notes window with a menu, a dialog for a new
// note, an about box, and a print module it loads only when it prints;
// `kttool run` shows it translated from notes_app.wld.
//
//   notes_app                   the main window
//   notes_app --probe REPORT    see Probe.h
//   notes_app --texts           the same texts, printed
#include <windows.h>

#include <cstdio>
#include <cwchar>

#include "Notes.h"
#include "Probe.h"

namespace {

int Usage() {
    std::fputs("usage: notes_app [--probe REPORT | --texts]\n", stderr);
    return 2;
}

int RunWindow() {
    HWND window = CreateNotesWindow();
    ShowWindow(window, SW_SHOW);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0;
}

int Run(int count, wchar_t** arguments) {
    const wchar_t* mode = count > 1 ? arguments[1] : L"";
    if (count == 1)
        return RunWindow();
    if (count == 3 && std::wcscmp(mode, L"--probe") == 0)
        return RunProbe(arguments[2]);
    if (count == 2 && std::wcscmp(mode, L"--texts") == 0)
        return RunProbe(nullptr);
    return Usage();
}

}  // namespace

int main() {
    int count = 0;
    wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    const int result = Run(count, arguments);
    LocalFree(arguments);
    return result;
}
