#include "Reading.h"

#include <cwchar>

namespace {

constexpr int kTextCapacity = 512;
constexpr UINT kReadNow = WM_APP;
constexpr int kMessageBoxTextId = 0xFFFF;  // the static that holds a message box's text
constexpr wchar_t kDialogClass[] = L"#32770";

// The message box being read on this thread.
thread_local DialogRead* boxRead = nullptr;

LRESULT CALLBACK ReadActivatedBox(int code, WPARAM wParam, LPARAM lParam) {
    HWND box = reinterpret_cast<HWND>(wParam);
    wchar_t windowClass[16] = {};
    if (code == HCBT_ACTIVATE && boxRead != nullptr && GetClassNameW(box, windowClass, 16) &&
        std::wcscmp(windowClass, kDialogClass) == 0) {
        wchar_t text[kTextCapacity] = {};
        GetWindowTextW(box, text, kTextCapacity);
        (*boxRead->report)[boxRead->item + "/caption"] = text;
        GetDlgItemTextW(box, kMessageBoxTextId, text, kTextCapacity);
        (*boxRead->report)[boxRead->item + "/text"] = text;
        boxRead = nullptr;
        PostMessageW(box, WM_COMMAND, IDOK, 0);
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

}  // namespace

INT_PTR CALLBACK ReadModalDialog(HWND dialog, UINT message, WPARAM, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        PostMessageW(dialog, kReadNow, 0, 0);
        return TRUE;
    }
    if (message == kReadNow) {
        const auto* read = reinterpret_cast<const DialogRead*>(GetWindowLongPtrW(dialog, DWLP_USER));
        ReadDialog(dialog, read->item, *read->report);
        EndDialog(dialog, IDOK);
        return TRUE;
    }
    return FALSE;
}

void ReadMessageBox(const std::string& item, Report& report, const std::function<void()>& show) {
    DialogRead read = {&report, item};
    HHOOK hook = SetWindowsHookExW(WH_CBT, ReadActivatedBox, nullptr, GetCurrentThreadId());
    boxRead = &read;
    show();
    boxRead = nullptr;
    UnhookWindowsHookEx(hook);
}
