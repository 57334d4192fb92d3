#include "MainDialog.h"

#include "AppIds.h"
#include "Panel.h"

namespace {

constexpr int kTextCapacity = 256;

INT_PTR CALLBACK PanelDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_COMMAND && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)) {
        EndDialog(dialog, LOWORD(wParam));
        return TRUE;
    }
    return message == WM_INITDIALOG;
}

void Initialise(HWND dialog) {
    SetMenu(dialog, LoadMenuW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDM_MAIN)));
    wchar_t greeting[kTextCapacity] = {};
    LoadStringW(GetModuleHandleW(nullptr), IDS_GREETING, greeting, kTextCapacity);
    SetDlgItemTextW(dialog, IDC_GREETING, greeting);
}

}  // namespace

INT_PTR CALLBACK MainDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
        case WM_INITDIALOG:
            Initialise(dialog);
            return TRUE;
        case WM_COMMAND:
            switch (LOWORD(wParam)) {
                case IDM_FILE_PANEL:
                    Panel_DialogBox(dialog, PanelDialogProc, 0);
                    return TRUE;
                case IDM_HELP_ABOUT:
                    MessageBoxA(dialog, kAboutText, kAboutCaption, MB_OK | MB_ICONINFORMATION);
                    return TRUE;
                case IDOK:
                case IDCANCEL:
                case IDM_FILE_EXIT:
                    EndDialog(dialog, LOWORD(wParam));
                    return TRUE;
            }
            break;
        case WM_DESTROY:
            DestroyMenu(GetMenu(dialog));
            break;
    }
    return FALSE;
}
