// Loading string resources by number, through the loop that grows its buffer
// until the string fits.
#include <gtest/gtest.h>

#include <string>

#include "kticore/strings/XString.h"
#include "kticore/strings/XStringW.h"
#include "tests/support/WideText.h"

namespace kt::test {
namespace {

void* ThisModule() { return GetModuleHandleW(nullptr); }

TEST(StringResource, LoadsStringsOfAnyLength) {
    for (unsigned id : {1u, 2u, 3u}) {
        CXString narrow("old");
        CXStringW wide(KTW("old"));
        ASSERT_EQ(narrow.Load(ThisModule(), id), 1) << id;
        ASSERT_EQ(wide.Load(ThisModule(), id), 1) << id;
        const unsigned expected = id == 1 ? 5u : id == 2 ? 255u : 300u;
        EXPECT_EQ(narrow.GetLength(), expected) << id;
        EXPECT_EQ(wide.GetLength(), expected) << id;
        EXPECT_EQ(std::string(narrow), std::string(CXString(wide))) << id;
    }
    CXString exact;
    exact.Load(ThisModule(), 2);
    EXPECT_EQ(exact.GetAllocSize(), 255 + 256 + 2);  // 255 characters took a second pass
    EXPECT_EQ(exact.GetAt(254), 'u');
}

TEST(StringResource, AMissingStringLoadsNothing) {
    CXString narrow;
    EXPECT_EQ(narrow.Load(ThisModule(), 99), 0);
}

}  // namespace
}  // namespace kt::test
