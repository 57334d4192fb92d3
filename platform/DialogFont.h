// What the system tells of the font that translated dialogs get: whether it
// supports double-byte character sets, its stock dialog font, and a font's
// face name and size in points on the screen.
#pragma once

#include "kticore/platform/Platform.h"

namespace kt::sys {

// GetSystemMetrics(SM_DBCSENABLED) is not 0.
bool DoubleByteCharacterSetsEnabled();

// The stock DEFAULT_GUI_FONT, else the stock SYSTEM_FONT, else null.
HFONT StockDialogFont();

// The face name of `font`, cut to `capacity` units with the terminator, and
// its height in points on the screen; false when the font cannot be read.
bool DescribeFont(HFONT font, KTWCHAR* faceName, unsigned capacity, DWORD& pointSize);

}  // namespace kt::sys
