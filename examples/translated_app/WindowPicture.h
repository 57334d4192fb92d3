// A picture of a window as the screen shows it, saved as a PNG file. For the
// demo's snapshot; not part of the application proper.
#pragma once

#include <windows.h>

// The window's pixels, frame and menu bar included, copied from its device
// context (PrintWindow draws nothing under Wine) and encoded by WIC. False
// when any step fails.
bool SaveWindowPicture(HWND window, const wchar_t* pngPath);
