// Dialog layouts take effect in the dialog template alone; no function moves
// or restyles a live window.
#include "kticore/translation/Translation.h"

void Supp_SetDialogPos(HWND, HWND, unsigned) {}

void Supp_SetDialogFont(HWND) {}
