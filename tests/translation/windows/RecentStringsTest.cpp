// The memory of recent string outcomes: a load takes its outcome from there
// only when all that it was remembered for holds.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <string>

#include "translation/intercept/RecentStrings.h"

namespace kt::test {
namespace {

const wchar_t kText[] = L"Remembered text";
constexpr int kTextLength = 15;
const wchar_t kTranslation[] = L"Erinnert";

TEST(RecentStrings, AreRecalledOnlyForTheSameModuleIdentityIdTextCountAndGeneration) {
    const HMODULE module = GetModuleHandleW(nullptr);
    const StringSource source = {module, 0x1234, 7001, RecentStringsGeneration()};
    RememberString(source, kText, kTextLength, kTextLength, {kTranslation, 8});
    StringOutcome outcome;
    ASSERT_TRUE(RecallString(source, kText, kTextLength, outcome));
    EXPECT_EQ(outcome.translation, kTranslation);
    EXPECT_EQ(outcome.translationLength, 8u);

    const std::wstring otherEnd = L"Remembered texT";
    // The same place as the module's: its handle's low bits differ.
    const auto nextToModule = reinterpret_cast<HMODULE>(reinterpret_cast<std::uintptr_t>(module) + 1);
    const struct {
        const char* what;
        StringSource source;
        const wchar_t* text;
        int loaded;
    } misses[] = {
        {"another module", {nextToModule, 0x1234, 7001, source.generation}, kText, kTextLength},
        {"another identity", {module, 0x1235, 7001, source.generation}, kText, kTextLength},
        {"another generation", {module, 0x1234, 7001, source.generation + 1}, kText, kTextLength},
        {"another text", source, otherEnd.c_str(), kTextLength},
        {"another count", source, kText, kTextLength - 1},
    };
    for (const auto& miss : misses)
        EXPECT_FALSE(RecallString(miss.source, miss.text, miss.loaded, outcome)) << miss.what;

    ForgetRecentStrings();
    EXPECT_NE(RecentStringsGeneration(), source.generation);
}

// A string the system counted past a 0 inside it is measured to the 0, and
// not kept: a later load of the same count must take the long way.
TEST(RecentStrings, KeepNoTextCountedPastAZero) {
    const HMODULE module = GetModuleHandleW(nullptr);
    const std::wstring longest(39, L'x');
    const wchar_t zeroInside[10] = L"Zero";  // counted as 9 units, zeros behind the text
    const struct {
        UINT id;
        const wchar_t* text;
        size_t length;
        int loaded;
        bool kept;
    } cases[] = {{7101, longest.c_str(), 39, 39, true}, {7103, zeroInside, 4, 9, false}};
    for (const auto& c : cases) {
        const StringSource source = {module, 0x1234, c.id, RecentStringsGeneration()};
        RememberString(source, c.text, c.length, c.loaded, {});
        StringOutcome outcome = {kTranslation, 1};
        EXPECT_EQ(RecallString(source, c.text, c.loaded, outcome), c.kept) << c.id;
    }
}

}  // namespace
}  // namespace kt::test
