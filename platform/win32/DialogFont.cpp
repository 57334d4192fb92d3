// The Win32 half of the dialog font: system metrics, stock objects, and the
// screen's resolution, which turns a font's height in pixels into points.
#include "platform/DialogFont.h"

#include <cwchar>

namespace kt::sys {

namespace {
constexpr int kPointsPerInch = 72;
}  // namespace

bool DoubleByteCharacterSetsEnabled() { return GetSystemMetrics(SM_DBCSENABLED) != 0; }

HFONT StockDialogFont() {
    HGDIOBJ font = GetStockObject(DEFAULT_GUI_FONT);
    if (font == nullptr)
        font = GetStockObject(SYSTEM_FONT);
    return static_cast<HFONT>(font);
}

bool DescribeFont(HFONT font, KTWCHAR* faceName, unsigned capacity, DWORD& pointSize) {
    LOGFONTW logFont = {};
    if (capacity == 0 || GetObjectW(font, sizeof logFont, &logFont) == 0)
        return false;
    std::wcsncpy(faceName, logFont.lfFaceName, capacity - 1);
    faceName[capacity - 1] = 0;
    const int height = logFont.lfHeight < 0 ? -logFont.lfHeight : logFont.lfHeight;
    HDC screen = GetDC(nullptr);
    pointSize =
        static_cast<DWORD>(MulDiv(height, kPointsPerInch, GetDeviceCaps(screen, LOGPIXELSY)));
    ReleaseDC(nullptr, screen);
    return true;
}

}  // namespace kt::sys
