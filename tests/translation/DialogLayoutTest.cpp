// Dialog layouts from `dlg` files, and the font that translated dialogs get.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <ostream>
#include <string>

#include "kticore/translation/Translation.h"
#include "platform/DialogFont.h"
#include "tests/support/LowBlock.h"
#include "tests/support/ScratchDirectory.h"
#include "translation/DialogLayouts.h"
#include "translation/Lookup.h"

namespace kt::test {
namespace {

struct Edges {
    int left, top, right, bottom;
    bool operator==(const Edges& other) const {
        return left == other.left && top == other.top && right == other.right &&
               bottom == other.bottom;
    }
};

// A layout as plain values: the size and the rectangles by position.
struct Layout {
    bool found = false;
    int cx = 0;
    int cy = 0;
    std::map<int, Edges> items;

    bool operator==(const Layout& other) const {
        return found == other.found && cx == other.cx && cy == other.cy && items == other.items;
    }
};

void PrintTo(const Layout& layout, std::ostream* out) {
    *out << (layout.found ? "size " : "none, size ") << layout.cx << "," << layout.cy << ", items";
    for (const auto& [position, edges] : layout.items)
        *out << " " << position << "=(" << edges.left << "," << edges.top << "," << edges.right
             << "," << edges.bottom << ")";
}

Layout LayoutOf(const char* key) {
    Layout layout;
    KTDlgPos* position = nullptr;
    if (!SuppDictionary().dialogs.Lookup(static_cast<int>(Supp_HashKey(key)), position))
        return layout;
    layout.found = true;
    layout.cx = position->size.cx;
    layout.cy = position->size.cy;
    CTMapPosition walk;
    while (const int* item = position->items.NextKey(walk)) {
        CIRect rect;
        position->items.Lookup(*item, rect);
        layout.items[*item] = {rect.left, rect.top, rect.right, rect.bottom};
    }
    return layout;
}

class DialogLayouts : public ::testing::Test {
protected:
    int Load(const char* leaf, const std::string& text) {
        const WideString name = directory / W(leaf);
        WriteContent(name, text);
        return LoadDialogLayouts(SuppDictionary(), name.c_str());
    }

    ScratchDirectory directory;
};

TEST_F(DialogLayouts, KeepRectanglesOnlyAndNameDialogsByText) {
    ASSERT_EQ(Load("a.dlg",
                   "[\\layout-kinds.dll\\Dialogs\\Main]\r\n"
                   "Dialog Size=t1,2,3,4\r\n"  // a rectangle: control 0, not a size
                   "2=shello\r\n"
                   "5=z1,2\r\n"
                   "7=t-1,-2,3,4\r\n"
                   "[\\layout-kinds.dll\\Dialogs\\Named]\r\n"
                   "first=t5,6,7,8\r\n"  // no number: position 0
                   "[\\layout-kinds.dll\\Dialogs\\#9]\r\n"
                   "[\\layout-kinds.dll\\Menus\\#7]\r\n"
                   "1=t1,1,1,1\r\n"),
              1);
    EXPECT_EQ(LayoutOf("layout-kinds.dll#1#Main"),
              (Layout{true, 0, 0, {{0, {1, 2, 3, 4}}, {7, {-1, -2, 3, 4}}}}));
    EXPECT_EQ(LayoutOf("layout-kinds.dll#1#Named"), (Layout{true, 0, 0, {{0, {5, 6, 7, 8}}}}));
    EXPECT_EQ(LayoutOf("layout-kinds.dll#1#9"), (Layout{true, 0, 0, {}}))
        << "a dialog without values still has a layout";
    EXPECT_FALSE(LayoutOf("layout-kinds.dll#1#7").found);
    EXPECT_FALSE(LayoutOf("layout-kinds.dll#2#7").found);
}

TEST_F(DialogLayouts, AreFoundByTheCaseBlindKeyAndASecondDefinitionReplacesTheFirst) {
    ASSERT_EQ(
        Load("a.dlg", "[\\Layout-Again.DLL\\Dialogs\\#1]\r\nDialog Size=z20,10\r\n3=t0,0,10,0\r\n"),
        1);
    EXPECT_EQ(LayoutOf("layout-again.dll#1#1"), (Layout{true, 20, 10, {{3, {0, 0, 10, 0}}}}));
    ASSERT_EQ(Load("b.dlg", "[\\LAYOUT-AGAIN.DLL\\Dialogs\\#1]\r\n2=t2,2,2,2\r\n"), 1);
    EXPECT_EQ(LayoutOf("layout-again.dll#1#1"), (Layout{true, 0, 0, {{2, {2, 2, 2, 2}}}}));
}

TEST_F(DialogLayouts, AMissingFileLoadsNothing) {
    EXPECT_EQ(LoadDialogLayouts(SuppDictionary(), (directory / W("missing.dlg")).c_str()), 0);
}

TEST_F(DialogLayouts, ComeWithTheDictionaryOfTheSameName) {
    WriteContent(directory / W("twin.wld"), "\"layout-twin\"\n\"twin\"\n");
    WriteContent(directory / W("twin.dlg"), "[\\layout-twin.dll\\Dialogs\\#4]\r\n0=t1,0,0,0\r\n");
    ASSERT_EQ(Supp_AddWld((directory / W("twin.wld")).c_str()), 1);
    EXPECT_TRUE(LayoutOf("layout-twin.dll#1#4").found);
    WriteContent(directory / W("alone.wld"), "\"layout-alone\"\n\"alone\"\n");
    EXPECT_EQ(Supp_AddWld((directory / W("alone.wld")).c_str()), 1)
        << "no layout file is no failure";
}

// A memory name changed to the layout extension names the same block, which
// must not be read again as layouts.
TEST_F(DialogLayouts, ADictionaryInMemoryHasNoTwin) {
    const std::string text = "[\\layout-memory.dll\\Dialogs\\#4]\r\n0=t1,0,0,0\r\n\"layout-memory\"\r\n\"memory\"\r\n";
    LowBlock block(4096);
    ASSERT_NE(block.data, nullptr);
    std::memcpy(block.data, text.data(), text.size());
    const std::string name =
        "fmem::" + std::to_string(reinterpret_cast<std::uintptr_t>(block.data)) + "," + std::to_string(text.size());
    ASSERT_EQ(Supp_AddWld(W(name).c_str()), 1);
    EXPECT_EQ(Wide(Supp_Translate("layout-memory")), W("memory"));
    EXPECT_FALSE(LayoutOf("layout-memory.dll#1#4").found);
}

TEST(DialogFont, IsTheLogicalDialogFontWithoutDoubleByteSupportElseTheStockFont) {
    const CSuppDictionary& dictionary = SuppDictionary();
    EXPECT_EQ(dictionary.charset, 0u);
    EXPECT_EQ(dictionary.replaceFont, 1);
    if (!sys::DoubleByteCharacterSetsEnabled()) {
        EXPECT_EQ(Wide(dictionary.fontName), W("MS Shell Dlg"));
        EXPECT_EQ(dictionary.fontSize, 8u);
        EXPECT_EQ(Supp_GetFont(), nullptr);
    } else {
        EXPECT_EQ(Supp_GetFont(), sys::StockDialogFont());
        EXPECT_NE(dictionary.fontName[0], 0);
    }
}

}  // namespace
}  // namespace kt::test
