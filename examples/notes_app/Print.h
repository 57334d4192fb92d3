// The print module: a DLL that the application loads by name only when it
// prints, and calls through GetProcAddress.
#pragma once

#include <windows.h>

#define NOTES_PRINT_MODULE L"notes_print.dll"
#define NOTES_PRINT_DIALOG "Print_DialogBox"
#define NOTES_PRINT_STRING "Print_LoadString"

// DialogBoxParamW of the module's print dialog with the caller's procedure.
using PrintDialogBox = INT_PTR (*)(HWND owner, DLGPROC procedure, LPARAM parameter);
// LoadStringW of the module's own string `id`.
using PrintLoadString = int (*)(unsigned id, wchar_t* buffer, int capacity);
