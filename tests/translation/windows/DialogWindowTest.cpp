// Rewritten templates handed to the dialog manager: the windows it makes
// show the translated texts, the moved controls in dialog units and the
// dictionary's font.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "tests/translation/TemplateBuilder.h"
#include "tests/translation/TestDictionary.h"
#include "translation/Rewriting.h"

namespace kt::test {
namespace {

INT_PTR CALLBACK NoProcedure(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

WideString TextOf(HWND window) {
    KTWCHAR text[256] = {};
    GetWindowTextW(window, text, 256);
    return text;
}

// Dialog units to the dialog's client pixels, by the dialog's own font.
RECT InPixels(HWND dialog, int x, int y, int cx, int cy) {
    RECT rect = {x, y, x + cx, y + cy};
    MapDialogRect(dialog, &rect);
    return rect;
}

RECT ClientRectOf(HWND control, HWND dialog) {
    RECT rect;
    GetWindowRect(control, &rect);
    MapWindowPoints(HWND_DESKTOP, dialog, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

::testing::AssertionResult SameRect(const RECT& actual, const RECT& expected) {
    if (std::memcmp(&actual, &expected, sizeof actual) == 0)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "(" << actual.left << "," << actual.top << "," << actual.right << ","
                                         << actual.bottom << ") instead of (" << expected.left << "," << expected.top
                                         << "," << expected.right << "," << expected.bottom << ")";
}

ItemShape Control(std::uint32_t id, std::uint16_t windowClass, const char* title, std::int16_t y) {
    ItemShape item;
    item.id = id;
    item.windowClass = Field::Ordinal(windowClass);
    item.title = Field::Text(W(title));
    item.x = 10, item.y = y, item.cx = 60, item.cy = 14;
    return item;
}

TEST(DialogWindow, ShowsTranslatedTextsMovedControlsAndTheDictionarysFont) {
    AddTranslations({{"dw.Title", "Fenster"}, {"dw.Button", "Knopf"}, {"dw.Label", "Beschriftung"}});
    const unsigned layout = AddLayout("dw.exe#1#1", {30, 20}, {{0, {5, 2, 25, 2}}, {2, {0, 10, 0, 10}}});
    const CSuppDictionary& dictionary = SuppDictionary();
    for (bool extended : {false, true}) {
        DialogShape source;
        source.extended = extended;
        source.style = WS_POPUP | WS_CAPTION | kDsSetFont;
        source.title = W("dw.Title");
        source.font = {12, FW_BOLD, 0, 0, W("Source Face")};
        source.items = {Control(1, kButton, "dw.Button", 10), Control(2, kStatic, "dw.Label", 30),
                        Control(3, kEdit, "dw.Button", 50)};
        const Bytes bytes = TemplateBuilder::Build(source);
        unsigned size = 0;
        void* rewritten = LayoutDialogTemplate(bytes.data(), bytes.size(), layout, &size, nullptr);
        ASSERT_NE(size, 0u);

        HWND dialog = CreateDialogIndirectParamW(GetModuleHandleW(nullptr), static_cast<LPCDLGTEMPLATEW>(rewritten),
                                                 nullptr, NoProcedure, 0);
        std::free(rewritten);
        ASSERT_NE(dialog, nullptr) << "error " << GetLastError();

        EXPECT_EQ(TextOf(dialog), W("Fenster"));
        EXPECT_EQ(TextOf(GetDlgItem(dialog, 1)), W("Knopf"));
        EXPECT_EQ(TextOf(GetDlgItem(dialog, 2)), W("Beschriftung"));
        EXPECT_EQ(TextOf(GetDlgItem(dialog, 3)), W("dw.Button"));

        RECT client;
        GetClientRect(dialog, &client);
        EXPECT_TRUE(SameRect(client, InPixels(dialog, 0, 0, 230, 120))) << extended;
        EXPECT_TRUE(SameRect(ClientRectOf(GetDlgItem(dialog, 1), dialog), InPixels(dialog, 15, 12, 80, 14)));
        EXPECT_TRUE(SameRect(ClientRectOf(GetDlgItem(dialog, 2), dialog), InPixels(dialog, 10, 30, 60, 14)));
        EXPECT_TRUE(SameRect(ClientRectOf(GetDlgItem(dialog, 3), dialog), InPixels(dialog, 10, 60, 60, 14)));

        LOGFONTW font = {};
        ASSERT_NE(GetObjectW(reinterpret_cast<HFONT>(SendMessageW(dialog, WM_GETFONT, 0, 0)), sizeof font, &font), 0);
        EXPECT_EQ(WideString(font.lfFaceName), WideString(dictionary.fontName)) << extended;
        HDC screen = GetDC(nullptr);
        EXPECT_EQ(font.lfHeight, -MulDiv(static_cast<int>(dictionary.fontSize), GetDeviceCaps(screen, LOGPIXELSY), 72));
        ReleaseDC(nullptr, screen);
        if (extended) {  // the classic form has no weight of its own
            EXPECT_EQ(font.lfWeight, FW_BOLD);
        }
        DestroyWindow(dialog);
    }
}

}  // namespace
}  // namespace kt::test
