// Whether a control's text fits the rectangle the dialog gives it, measured
// in the control's font the way the control draws it: one line for buttons
// and statics that do not wrap, words wrapped within the height for those
// that do.
#pragma once

#include <windows.h>

#include <string>

namespace kttool {

// The pixels of width that `control` lacks for its text in `font`; 0 where
// it fits or where the control is not one whose text the dialog rewriting
// translates (edit fields, pictures, owner-drawn controls, texts cut with an
// ellipsis on purpose). `dialog` converts the controls' margins from dialog
// units.
int MissingWidth(HWND dialog, HWND control, HFONT font);

// The window's whole text.
std::wstring WindowText(HWND window);

}  // namespace kttool
