// The POSIX half of the dialog font: there is no window system, and so no
// double-byte support of one and no stock font.
#include "platform/DialogFont.h"

namespace kt::sys {

bool DoubleByteCharacterSetsEnabled() { return false; }

HFONT StockDialogFont() { return nullptr; }

bool DescribeFont(HFONT, KTWCHAR*, unsigned, DWORD&) { return false; }

}  // namespace kt::sys
