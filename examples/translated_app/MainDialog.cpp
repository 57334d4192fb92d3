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

// A menu set on a dialog takes its height from the client area: the window
// grows by it, so that the controls keep their room.
void AddMenu(HWND dialog, HMENU menu) {
    RECT client;
    GetClientRect(dialog, &client);
    SetMenu(dialog, menu);
    const DWORD style = static_cast<DWORD>(GetWindowLongPtrW(dialog, GWL_STYLE));
    const DWORD exStyle = static_cast<DWORD>(GetWindowLongPtrW(dialog, GWL_EXSTYLE));
    AdjustWindowRectEx(&client, style, TRUE, exStyle);
    SetWindowPos(dialog, nullptr, 0, 0, client.right - client.left, client.bottom - client.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Initialise(HWND dialog) {
    AddMenu(dialog, LoadMenuW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDM_MAIN)));
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
