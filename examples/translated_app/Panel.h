// The panel module: a DLL with resources of its own, which asks for their
// translation itself when it is loaded.
#pragma once

#include <windows.h>

#if defined(TRANSLATED_PANEL_BUILDING)
#    define PANEL_API extern "C" __declspec(dllexport)
#else
#    define PANEL_API extern "C" __declspec(dllimport)
#endif

// LoadStringW of the panel's own string `id`.
PANEL_API int Panel_LoadString(unsigned id, wchar_t* buffer, int capacity);
// LoadMenuW of the panel's menu.
PANEL_API HMENU Panel_LoadMenu();
// DialogBoxParamW of the panel's dialog with the caller's procedure.
PANEL_API INT_PTR Panel_DialogBox(HWND owner, DLGPROC procedure, LPARAM parameter);
