#include "Snapshot.h"

#include <windows.h>

#include <cstdio>

#include "AppIds.h"
#include "MainDialog.h"
#include "Report.h"
#include "tools/picture/WindowPicture.h"

namespace {

// Long enough for the window manager to map and paint the dialog.
constexpr DWORD kPaintMilliseconds = 500;

}  // namespace

int RunSnapshot(const wchar_t* pngPath) {
    HMODULE app = GetModuleHandleW(nullptr);
    HWND dialog = CreateDialogParamW(app, MAKEINTRESOURCEW(IDD_MAIN), nullptr, MainDialogProc, 0);
    if (dialog == nullptr)
        return 1;
    ShowWindow(dialog, SW_SHOW);
    UpdateWindow(dialog);
    PumpMessages(kPaintMilliseconds);

    Report texts;
    ReadDialog(dialog, ItemName(app, "dialog", IDD_MAIN, "main"), texts);
    ReadMenu(GetMenu(dialog), ItemName(app, "menu", IDM_MAIN, "bar"), texts);
    PrintReport(stdout, texts);

    const bool saved = SaveWindowPicture(dialog, pngPath);
    DestroyWindow(dialog);
    return saved ? 0 : 1;
}
