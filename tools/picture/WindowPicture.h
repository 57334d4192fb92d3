// A picture of a window as the screen shows it, saved as a PNG file: the
// example application's snapshot and kttool's rendered dialogs.
#pragma once

#include <windows.h>

#include <vector>

// The window's pixels, frame and menu bar included, copied from its device
// context (PrintWindow draws nothing under Wine) and encoded by WIC, with
// `outlines` (in the window's own coordinates, its frame's top left at 0,0)
// drawn over them in red. False when any step fails.
bool SaveWindowPicture(HWND window, const wchar_t* pngPath, const std::vector<RECT>& outlines = {});

// Dispatches the thread's messages for `milliseconds`, so that a window just
// shown is mapped and painted before its picture is taken.
void PumpMessages(DWORD milliseconds);
