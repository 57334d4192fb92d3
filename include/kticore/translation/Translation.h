// Translation of an application's texts from a plain text dictionary (a
// `wld` file, with an optional `dlg` layout file of the same name). Lookups
// never fail loudly: where there is no translation, the source text comes
// back.
#pragma once

#include "kticore/platform/Platform.h"

// Loads the dictionary (null: "app.wld" in the current directory) and its
// layout twin, and installs the interception. 1, or 0 when the dictionary
// file failed or a dictionary is already loaded.
KTCORE_API int Supp_Init(const KTWCHAR* path);
// Adds a further dictionary and its layouts; before Supp_Init, the same as it.
KTCORE_API int Supp_AddWld(const KTWCHAR* path);

// The translation of `text`, or `text` itself; null for a null or empty text.
KTCORE_API const KTWCHAR* Supp_Translate(const KTWCHAR* text);
// The translation of prefix + text, else of text, else `text`.
KTCORE_API const KTWCHAR* Supp_Translate(const KTWCHAR* text, const KTWCHAR* prefix);
// A wide text that stays valid until unload: the translation, or the text
// itself, which then joins the dictionary.
KTCORE_API const KTWCHAR* Supp_Translate(const char* text);
#if defined(_WIN32)
// Translates a window's own text in place (not its children's); 1.
KTCORE_API int Supp_Translate(HWND window);
// Walks a menu and its sub-menus, writing each item back; 1.
KTCORE_API int Supp_Translate(HMENU menu);
#endif

// The translation switch, read by every interceptor at each call; on at load.
KTCORE_API int Supp_IsTranslationEnable();
KTCORE_API void Supp_SetTranslationEnable(int enable);

// The code page that the loaded dictionary's values are read in; 0 is the
// process's ANSI code page.
KTCORE_API unsigned long Supp_GetACP();
// The font chosen for translated dialogs; null on a system without
// double-byte support.
KTCORE_API HFONT Supp_GetFont();

// Part of the interface for hosts that call them; they leave the window as
// it is: layouts take effect in the dialog template alone.
KTCORE_API void Supp_SetDialogPos(HWND dialog, HWND parent, unsigned flags);
KTCORE_API void Supp_SetDialogFont(HWND dialog);
