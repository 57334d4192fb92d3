// Real resources of the test executable (TranslationResources.rc) found,
// wrapped in records and loaded: rewritten once, served again, and sized
// as served.
#include <gtest/gtest.h>

#include <string>

#include "tests/translation/TemplateWalker.h"
#include "tests/translation/TestDictionary.h"
#include "translation/Lookup.h"
#include "translation/ResourceRecords.h"

namespace kt::test {
namespace {

HMODULE ThisModule() { return GetModuleHandleW(nullptr); }

std::string KeyOf(int id, unsigned kind) {
    char key[512] = {};
    Supp_MakeKeyA(ThisModule(), MAKEINTRESOURCEA(id), key, kind);
    return key;
}

// FindResource as the interceptor runs it.
SuppResource* Find(int id, const KTWCHAR* type) {
    HRSRC real = FindResourceW(ThisModule(), MAKEINTRESOURCEW(id), type);
    EXPECT_NE(real, nullptr) << id;
    return Supp_WrapResource(real, ThisModule(), MAKEINTRESOURCEW(id), type);
}

TEST(ResourceLoad, DialogsAreRewrittenOnceWithKeyedTextsAndLayoutAndSizedAsServed) {
    const std::string key100 = KeyOf(100, kSuppKindDialog), key101 = KeyOf(101, kSuppKindDialog);
    AddTranslations({{"rr.Button", "Knopf"}, {(key100 + "rr.Dialog").c_str(), "Dialog 100"},
                     {(key101 + "rr.Dialog").c_str(), "Dialog 101"}});
    AddLayout(key101.c_str(), {40, 0}, {{1, {0, 0, 20, 0}}});

    for (int id : {100, 101}) {
        SuppResource* record = Find(id, MAKEINTRESOURCEW(kResourceTypeDialog));
        ASSERT_TRUE(IsResourceRecord(record));
        EXPECT_EQ(Find(id, MAKEINTRESOURCEW(kResourceTypeDialog)), record);
        const DWORD realSize = SizeofResource(ThisModule(), record->real);

        const void* served = Supp_LoadResource(ThisModule(), record);
        ASSERT_NE(served, nullptr);
        EXPECT_NE(served, LockResource(LoadResource(ThisModule(), record->real)));
        EXPECT_EQ(Supp_LoadResource(ThisModule(), record), served);
        EXPECT_NE(record->size, realSize);

        DialogShape dialog;
        ASSERT_TRUE(TemplateWalker::Read(served, record->size, dialog)) << id;
        EXPECT_EQ(dialog.title, W(id == 100 ? "Dialog 100" : "Dialog 101"));
        EXPECT_EQ(dialog.cx, id == 100 ? 160 : 200);
        ASSERT_GE(dialog.items.size(), 2u);
        EXPECT_EQ(dialog.items[0].title, Field::Text(W("Knopf")));
        EXPECT_EQ(dialog.items[1].title, Field::Text(W("rr.Label")));
        EXPECT_EQ(dialog.items[1].cx, id == 100 ? 60 : 80);
    }
}

TEST(ResourceLoad, StringBlocksAreTranslatedAndBlocksWithoutTextServedAsTheyStand) {
    const std::string key7 = KeyOf(7, kSuppKindString);
    AddTranslations({{"rr.Other", "Anderes"}, {(key7 + "rr.String").c_str(), "Zeichenkette"}});

    SuppResource* record = Find(7, MAKEINTRESOURCEW(kResourceTypeString));
    ASSERT_TRUE(IsResourceRecord(record));
    const auto* served = static_cast<const WORD*>(Supp_LoadResource(ThisModule(), record));
    ASSERT_NE(served, nullptr);
    EXPECT_EQ(record->size, 2 * (16 + 12 + 7));  // 16 length words and the two texts
    EXPECT_EQ(WideString(reinterpret_cast<const KTWCHAR*>(served + 1), served[0]), W("Zeichenkette"));
    EXPECT_EQ(served[13], 0);  // id 97
    EXPECT_EQ(WideString(reinterpret_cast<const KTWCHAR*>(served + 15), served[14]), W("Anderes"));

    SuppResource* empty = Find(13, MAKEINTRESOURCEW(kResourceTypeString));
    const void* real = LoadResource(ThisModule(), empty->real);
    EXPECT_EQ(Supp_LoadResource(ThisModule(), empty), real);
    EXPECT_EQ(empty->size, SizeofResource(ThisModule(), empty->real));
}

// A menu is translated when it is loaded as a menu; its block is served as
// the module has it. A real handle goes to the real function.
TEST(ResourceLoad, MenusAndRealHandlesAreServedTheRealBlock) {
    SuppResource* menu = Find(200, MAKEINTRESOURCEW(kResourceTypeMenu));
    ASSERT_TRUE(IsResourceRecord(menu));
    EXPECT_EQ(Supp_LoadResource(ThisModule(), menu), LoadResource(ThisModule(), menu->real));

    HRSRC real = FindResourceW(ThisModule(), MAKEINTRESOURCEW(100), MAKEINTRESOURCEW(kResourceTypeDialog));
    EXPECT_EQ(Supp_LoadResource(ThisModule(), reinterpret_cast<SuppResource*>(real)), LoadResource(ThisModule(), real));
}

}  // namespace
}  // namespace kt::test
