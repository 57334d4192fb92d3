// Loading string resources by number, through the loop that grows its buffer
// until the string fits.
#include <gtest/gtest.h>

#include <string>

#include "kticore/strings/XString.h"
#include "kticore/strings/XStringW.h"
#include "tests/support/StringInspection.h"
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

// Load locks the buffer only while the system writes into it: a string
// locked before comes out unlocked, whether or not the string is found.
TEST(StringResource, LoadUnlocksAndAMissingStringLoadsNothing) {
    for (unsigned id : {1u, 99u}) {
        CXString narrow;
        CXStringW wide;
        narrow.GetBuffer(300);  // room enough for Load to keep the buffer
        wide.GetBuffer(300);
        EXPECT_EQ(narrow.Load(ThisModule(), id), id == 1 ? 1 : 0);
        EXPECT_EQ(wide.Load(ThisModule(), id), id == 1 ? 1 : 0);
        EXPECT_EQ(HeaderOf(narrow).refs, 1) << id;
        EXPECT_EQ(HeaderOf(wide).refs, 1) << id;
    }
}

}  // namespace
}  // namespace kt::test
