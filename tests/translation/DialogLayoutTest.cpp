// Dialog layouts from `dlg` files, and the font that translated dialogs get.
#include <gtest/gtest.h>

#include "kticore/translation/Translation.h"
#include "platform/DialogFont.h"
#include "tests/support/WideText.h"
#include "translation/SuppDictionary.h"

namespace kt::test {
namespace {

TEST(DialogFont, IsTheLogicalDialogFontWithoutDoubleByteSupportElseTheStockFont) {
    const CSuppDictionary& dictionary = SuppDictionary();
    EXPECT_EQ(dictionary.charset, 0u);
    EXPECT_EQ(dictionary.replaceFont, 1);
    if (!sys::DoubleByteCharacterSetsEnabled()) {
        EXPECT_EQ(Wide(dictionary.fontName), Wide(KTW("MS Shell Dlg")));
        EXPECT_EQ(dictionary.fontSize, 8u);
        EXPECT_EQ(Supp_GetFont(), nullptr);
    } else {
        EXPECT_EQ(Supp_GetFont(), sys::StockDialogFont());
        EXPECT_NE(dictionary.fontName[0], 0);
    }
}

}  // namespace
}  // namespace kt::test
