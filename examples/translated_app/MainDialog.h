// The application's main window: a dialog with a menu, a greeting from the
// string table, an about box and the panel module's dialog.
#pragma once

#include <windows.h>

INT_PTR CALLBACK MainDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

// The about box's texts, as the application passes them to MessageBoxA.
constexpr char kAboutCaption[] = "About order entry";
constexpr char kAboutText[] = "An example of a translated application.";
