#include "tools/kttool/TextRoom.h"

#include <string>

namespace kttool {
namespace {

// The room a control keeps beside its text, in dialog units: a push
// button's edges and focus frame on each side, the box before a check box's
// or radio button's text, a group box's frame on each side.
constexpr int kPushButtonMargin = 2;
constexpr int kCheckMarkRoom = 12;
constexpr int kGroupBoxMargin = 4;

enum class Measure { None, OneLine, Wrapped };

struct TextPlace {
    Measure measure = Measure::None;
    int margin = 0;  // dialog units left and right of the text, together
    UINT drawFlags = 0;
};

std::wstring ClassOf(HWND control) {
    wchar_t name[64] = {};
    GetClassNameW(control, name, static_cast<int>(std::size(name)));
    return name;
}

TextPlace ButtonPlace(LONG style) {
    const Measure lines = (style & BS_MULTILINE) != 0 ? Measure::Wrapped : Measure::OneLine;
    switch (style & BS_TYPEMASK) {
        case BS_PUSHBUTTON:
        case BS_DEFPUSHBUTTON:
            return {lines, 2 * kPushButtonMargin, 0};
        case BS_CHECKBOX:
        case BS_AUTOCHECKBOX:
        case BS_RADIOBUTTON:
        case BS_AUTORADIOBUTTON:
        case BS_3STATE:
        case BS_AUTO3STATE:
            return {lines, kCheckMarkRoom, 0};
        case BS_GROUPBOX:
            return {Measure::OneLine, 2 * kGroupBoxMargin, 0};
        default:
            return {};
    }
}

TextPlace StaticPlace(LONG style) {
    if ((style & SS_ELLIPSISMASK) != 0)
        return {};
    const UINT prefix = (style & SS_NOPREFIX) != 0 ? DT_NOPREFIX : 0;
    switch (style & SS_TYPEMASK) {
        case SS_LEFT:
        case SS_CENTER:
        case SS_RIGHT:
            return {Measure::Wrapped, 0, prefix};
        case SS_SIMPLE:
        case SS_LEFTNOWORDWRAP:
            return {Measure::OneLine, 0, prefix};
        default:
            return {};
    }
}

TextPlace PlaceOf(HWND control) {
    const std::wstring name = ClassOf(control);
    const LONG style = GetWindowLongW(control, GWL_STYLE);
    if (_wcsicmp(name.c_str(), L"Button") == 0)
        return ButtonPlace(style);
    if (_wcsicmp(name.c_str(), L"Static") == 0)
        return StaticPlace(style);
    return {};
}

// The extent of `text` drawn within `width` pixels: the width it takes (more
// than `width` where one word alone is wider) and its height.
SIZE DrawnExtent(HDC dc, const std::wstring& text, int width, UINT flags) {
    RECT bounds = {0, 0, width, 0};
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &bounds, flags | DT_CALCRECT);
    return {bounds.right, bounds.bottom};
}

bool FitsWrapped(HDC dc, const std::wstring& text, int width, int height, UINT flags) {
    const SIZE extent = DrawnExtent(dc, text, width, flags | DT_WORDBREAK);
    return extent.cx <= width && extent.cy <= height;
}

// The narrowest width at which the wrapped text fits `height`, found between
// `width`, where it does not, and its width on one line, where it does.
int WrappedWidth(HDC dc, const std::wstring& text, int width, int height, UINT flags) {
    int fits = DrawnExtent(dc, text, width, flags | DT_SINGLELINE).cx;
    if (fits <= width)  // taller than the control even on one line
        return width;
    int tooNarrow = width;
    while (fits - tooNarrow > 1) {
        const int middle = tooNarrow + (fits - tooNarrow) / 2;
        (FitsWrapped(dc, text, middle, height, flags) ? fits : tooNarrow) = middle;
    }
    return fits;
}

}  // namespace

int MissingWidth(HWND dialog, HWND control, HFONT font) {
    const TextPlace place = PlaceOf(control);
    const std::wstring text = WindowText(control);
    if (place.measure == Measure::None || text.empty())
        return 0;

    RECT margin = {0, 0, place.margin, 0};
    MapDialogRect(dialog, &margin);
    RECT client;
    GetClientRect(control, &client);
    const int width = client.right - margin.right;
    const int height = client.bottom;

    HDC dc = GetDC(control);
    HGDIOBJ previous = SelectObject(dc, font);
    int needed = width;
    if (place.measure == Measure::OneLine)
        needed = DrawnExtent(dc, text, width, place.drawFlags | DT_SINGLELINE).cx;
    else if (!FitsWrapped(dc, text, width, height, place.drawFlags))
        needed = WrappedWidth(dc, text, width, height, place.drawFlags);
    SelectObject(dc, previous);
    ReleaseDC(control, dc);
    return needed > width ? needed - width : 0;
}

std::wstring WindowText(HWND window) {
    const int length = GetWindowTextLengthW(window);
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), length + 1)));
    return text;
}

}  // namespace kttool
