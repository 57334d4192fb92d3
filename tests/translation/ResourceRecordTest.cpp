// Records that stand in for resources: one per resource of a module, with
// the resource's key. Real handles here are addresses of the test's own,
// which the records only compare.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/Module.h"
#include "tests/support/WideText.h"
#include "translation/Lookup.h"
#include "translation/ResourceRecords.h"

namespace kt::test {
namespace {

constexpr std::uintptr_t kBitmap = 2;

const void* Type(std::uintptr_t type) { return reinterpret_cast<const void*>(type); }
const char* Number(std::uintptr_t id) { return reinterpret_cast<const char*>(id); }

HMODULE ThisModule() { return sys::ModuleContaining(reinterpret_cast<const void*>(&ThisModule)); }

std::string KeyOf(const void* name, unsigned kind) {
    char key[512] = {};
    Supp_MakeKeyA(ThisModule(), name, key, kind);
    return key;
}

TEST(ResourceRecord, OneRecordPerResourceOfAModule) {
    static char resources[2];
    const auto first = reinterpret_cast<HRSRC>(&resources[0]);
    const auto second = reinterpret_cast<HRSRC>(&resources[1]);

    SuppResource* record = Supp_WrapResource(first, ThisModule(), "MAIN", Type(kResourceTypeDialog));
    ASSERT_NE(static_cast<void*>(record), static_cast<void*>(first));
    EXPECT_TRUE(IsResourceRecord(record));
    EXPECT_EQ(record->real, first);
    EXPECT_EQ(record->module, ThisModule());
    EXPECT_EQ(record->realData, nullptr);
    EXPECT_EQ(record->translated, nullptr);

    EXPECT_EQ(Supp_WrapResource(first, ThisModule(), KTW("MAIN"), Type(kResourceTypeDialog)), record);
    EXPECT_NE(Supp_WrapResource(second, ThisModule(), "MAIN", Type(kResourceTypeDialog)), record);
    EXPECT_NE(Supp_WrapResource(first, nullptr, "MAIN", Type(kResourceTypeDialog)), record);
}

TEST(ResourceRecord, OnlyMenusDialogsAndStringBlocksGetARecord) {
    static char resource;
    const auto real = reinterpret_cast<HRSRC>(&resource);
    EXPECT_EQ(Supp_WrapResource(nullptr, ThisModule(), "X", Type(kResourceTypeDialog)), nullptr);
    EXPECT_EQ(static_cast<void*>(Supp_WrapResource(real, ThisModule(), "X", Type(kBitmap))), real);
    EXPECT_EQ(static_cast<void*>(Supp_WrapResource(real, ThisModule(), "X", "DIALOG")), real);
    EXPECT_EQ(static_cast<void*>(Supp_WrapResource(real, ThisModule(), KTW("X"), KTW("DIALOG"))), real);
}

// The key has the kind of the resource and its name in narrow form, whether
// the name came as a number, narrow or wide text. A key too long for the
// record is left out rather than cut.
TEST(ResourceRecord, KeyNamesTheModuleTheKindAndTheResource) {
    static char resources[5];
    const std::string longName(200, 'n');
    const struct {
        std::uintptr_t type;
        const void* name;
        bool wide;
        std::string key;
        std::string ending;
    } cases[] = {
        {kResourceTypeDialog, Number(100), false, KeyOf(Number(100), kSuppKindDialog), "#1#100"},
        {kResourceTypeMenu, "Main", false, KeyOf("Main", kSuppKindMenu), "#2#Main"},
        {kResourceTypeString, KTW("Block"), true, KeyOf("Block", kSuppKindString), "#3#Block"},
        {kResourceTypeDialog, longName.c_str(), false, "", ""},
        {kResourceTypeDialog, nullptr, false, "", ""},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        const auto real = reinterpret_cast<HRSRC>(&resources[i]);
        SuppResource* record =
            cases[i].wide
                ? Supp_WrapResource(real, ThisModule(), static_cast<const KTWCHAR*>(cases[i].name), Type(cases[i].type))
                : Supp_WrapResource(real, ThisModule(), static_cast<const char*>(cases[i].name), Type(cases[i].type));
        ASSERT_TRUE(IsResourceRecord(record)) << i;
        EXPECT_EQ(record->type, cases[i].type) << i;
        EXPECT_EQ(std::string(record->key), cases[i].key) << i;
        EXPECT_EQ(cases[i].key.substr(cases[i].key.size() - cases[i].ending.size()), cases[i].ending) << i;
        EXPECT_EQ(record->keyHash, cases[i].key.empty() ? 0u : Supp_HashKey(cases[i].key.c_str())) << i;
    }
}

}  // namespace
}  // namespace kt::test
