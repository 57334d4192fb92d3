// The application's window and what its menu commands open; the test modes
// open the same with procedures of their own.
#pragma once

#include <windows.h>

// The main window with its menu and its caption, hidden.
HWND CreateNotesWindow();

// The dialog for a new note.
INT_PTR OpenNoteDialog(HWND owner, DLGPROC procedure, LPARAM parameter);
// The about box.
void ShowAbout(HWND owner);
// The print module, loaded now if it is not yet: null when it cannot be.
HMODULE PrintModule();
// The print module's dialog; -1 without the module.
INT_PTR OpenPrintDialog(HWND owner, DLGPROC procedure, LPARAM parameter);

// A dialog procedure that ends the dialog with OK or Cancel.
INT_PTR CALLBACK PlainDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
