// The print module: a DLL that the application loads by name only when it
// prints, and calls through GetProcAddress.
#pragma once

#include <windows.h>

constexpr wchar_t kPrintModule[] = L"notes_print.dll";
constexpr char kPrintDialogBox[] = "Print_DialogBox";
constexpr char kPrintLoadString[] = "Print_LoadString";

// DialogBoxParamW of the module's print dialog with the caller's procedure.
using PrintDialogBox = INT_PTR (*)(HWND owner, DLGPROC procedure, LPARAM parameter);
// LoadStringW of the module's own string `id`.
using PrintLoadString = int (*)(unsigned id, wchar_t* buffer, int capacity);

// The print module's function `name` of type `Function`, or null.
template <class Function>
Function PrintFunction(HMODULE print, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(print, name)));
}
