// Windows and menus of the window system, translated in place.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "kticore/translation/Translation.h"
#include "translation/Lookup.h"
#include "translation/SuppDictionary.h"

namespace kt::test {
namespace {

void Define(const char* key, const char* value) { SuppDictionary().Add(key, value); }

std::wstring ItemText(HMENU menu, UINT position) {
    wchar_t text[1024] = {};
    GetMenuStringW(menu, position, text, 1024, MF_BYPOSITION);
    return text;
}

// The state of an item without the item count of a sub-menu.
UINT ItemFlags(HMENU menu, UINT position) {
    return GetMenuState(menu, position, MF_BYPOSITION) & 0xFFFF;
}

TEST(WindowText, IsTranslatedInPlaceAndItsChildrenAreNot) {
    Define("window-caption", "Translated caption");
    Define("window-child", "Translated child");
    HWND window = CreateWindowExW(0, L"STATIC", L"window-caption", WS_OVERLAPPEDWINDOW, 0, 0, 100,
                                  100, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    HWND child = CreateWindowExW(0, L"STATIC", L"window-child", WS_CHILD, 0, 0, 10, 10, window,
                                 nullptr, nullptr, nullptr);
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(Supp_Translate(window), 1);
    wchar_t text[64] = {};
    GetWindowTextW(window, text, 64);
    EXPECT_STREQ(text, L"Translated caption");
    GetWindowTextW(child, text, 64);
    EXPECT_STREQ(text, L"window-child");
    DestroyWindow(window);
}

// A menu bar: "menu-file" with a sub-menu, "menu-plain" grayed and checked,
// "menu-disabled" disabled, a separator, and "menu-no-id" with the id 0.
class MenuWalk : public ::testing::Test {
protected:
    void SetUp() override {
        Define("menu.exe#2#1menu-file", "File");
        Define("menu-open", "Open");
        Define("menu.exe#2#1menu-plain", "Keyed");
        Define("menu-plain", "Plain");
        Define("menu-disabled", "Disabled");
        Define("menu-no-id", "No id");
        submenu = CreatePopupMenu();
        AppendMenuW(submenu, MF_STRING, 101, L"menu-open");
        bar = CreateMenu();
        AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(submenu), L"menu-file");
        AppendMenuW(bar, MF_STRING | MF_GRAYED | MF_CHECKED, 102, L"menu-plain");
        AppendMenuW(bar, MF_STRING | MF_DISABLED, 103, L"menu-disabled");
        AppendMenuW(bar, MF_SEPARATOR, 0, nullptr);
        AppendMenuW(bar, MF_STRING, 0, L"menu-no-id");
    }
    void TearDown() override { DestroyMenu(bar); }

    HMENU bar = nullptr;
    HMENU submenu = nullptr;
};

TEST_F(MenuWalk, WithAPrefixPrefersKeyedTextsAndKeepsGrayingAndCheckMarks) {
    EXPECT_EQ(Supp_TranslateMenuKeyed(bar, L"menu.exe#2#1"), 1);
    EXPECT_EQ(ItemText(bar, 0), L"File");
    EXPECT_EQ(GetSubMenu(bar, 0), submenu);
    EXPECT_EQ(ItemText(submenu, 0), L"Open");
    EXPECT_EQ(GetMenuItemID(submenu, 0), 101u);
    EXPECT_EQ(ItemText(bar, 1), L"Keyed");
    EXPECT_EQ(GetMenuItemID(bar, 1), 102u);
    EXPECT_EQ(ItemFlags(bar, 1), static_cast<UINT>(MF_GRAYED | MF_CHECKED));
    EXPECT_EQ(ItemText(bar, 2), L"Disabled");
    EXPECT_EQ(ItemFlags(bar, 2), 0u) << "only graying and the check mark survive";
    EXPECT_EQ(ItemFlags(bar, 3) & MF_SEPARATOR, static_cast<UINT>(MF_SEPARATOR));
    EXPECT_EQ(ItemText(bar, 4), L"menu-no-id") << "an item with the id 0 is not written back";
    EXPECT_EQ(GetMenuItemCount(bar), 5);
}

TEST_F(MenuWalk, WithAPrefixCutsALongTranslationAtItsBuffer) {
    Define("menu.exe#2#1menu-long", std::string(600, 'L').c_str());
    AppendMenuW(bar, MF_STRING, 104, L"menu-long");
    Supp_TranslateMenuKeyed(bar, L"menu.exe#2#1");
    EXPECT_EQ(ItemText(bar, 5), std::wstring(512, L'L'));
}

TEST_F(MenuWalk, WithoutAPrefixTranslatesPlainTexts) {
    EXPECT_EQ(Supp_Translate(bar), 1);
    EXPECT_EQ(ItemText(bar, 0), L"menu-file");
    EXPECT_EQ(ItemText(submenu, 0), L"Open");
    EXPECT_EQ(ItemText(bar, 1), L"Plain");
    EXPECT_EQ(ItemFlags(bar, 1), static_cast<UINT>(MF_GRAYED | MF_CHECKED));
}

}  // namespace
}  // namespace kt::test
