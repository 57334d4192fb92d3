#include "Notes.h"

#include <string>

#include "NotesIds.h"
#include "Print.h"

namespace {

constexpr wchar_t kWindowClass[] = L"NotesWindow";
constexpr int kTextCapacity = 256;
constexpr int kWidth = 480;
constexpr int kHeight = 320;
// Written in the code, not in the resources, and narrow: the library
// translates the message boxes of the ANSI functions.
constexpr char kAboutText[] = "Notes keeps short notes.";
constexpr char kAboutCaption[] = "About Notes";

HMODULE App() { return GetModuleHandleW(nullptr); }

std::wstring LoadedString(unsigned id) {
    wchar_t text[kTextCapacity] = {};
    LoadStringW(App(), id, text, kTextCapacity);
    return text;
}

LRESULT CALLBACK NotesWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_COMMAND) {
        switch (LOWORD(wParam)) {
        case IDM_FILE_NEW:
            OpenNoteDialog(window, PlainDialogProc, 0);
            return 0;
        case IDM_FILE_PRINT:
            OpenPrintDialog(window, PlainDialogProc, 0);
            return 0;
        case IDM_HELP_ABOUT:
            ShowAbout(window);
            return 0;
        case IDM_FILE_EXIT:
            DestroyWindow(window);
            return 0;
        }
    }
    if (message == WM_DESTROY)
        PostQuitMessage(0);
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace

HWND CreateNotesWindow() {
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = NotesWindowProc;
    windowClass.hInstance = App();
    windowClass.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // IDC_ARROW
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    windowClass.lpszClassName = kWindowClass;
    RegisterClassW(&windowClass);
    HWND window = CreateWindowExW(0, kWindowClass, LoadedString(IDS_APP_TITLE).c_str(), WS_OVERLAPPEDWINDOW,
                                  CW_USEDEFAULT, CW_USEDEFAULT, kWidth, kHeight, nullptr,
                                  LoadMenuW(App(), MAKEINTRESOURCEW(IDM_MAIN)), App(), nullptr);
    CreateWindowExW(0, L"STATIC", LoadedString(IDS_NO_NOTES).c_str(), WS_CHILD | WS_VISIBLE, 10, 10, kWidth / 2,
                    20, window, nullptr, App(), nullptr);
    return window;
}

INT_PTR OpenNoteDialog(HWND owner, DLGPROC procedure, LPARAM parameter) {
    return DialogBoxParamW(App(), MAKEINTRESOURCEW(IDD_NOTE), owner, procedure, parameter);
}

void ShowAbout(HWND owner) { MessageBoxA(owner, kAboutText, kAboutCaption, MB_OK | MB_ICONINFORMATION); }

HMODULE PrintModule() { return LoadLibraryW(kPrintModule); }

INT_PTR OpenPrintDialog(HWND owner, DLGPROC procedure, LPARAM parameter) {
    HMODULE module = PrintModule();
    const auto open = module != nullptr ? PrintFunction<PrintDialogBox>(module, kPrintDialogBox) : nullptr;
    return open != nullptr ? open(owner, procedure, parameter) : -1;
}

INT_PTR CALLBACK PlainDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_INITDIALOG)
        return TRUE;
    if (message == WM_COMMAND && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)) {
        EndDialog(dialog, LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
}
