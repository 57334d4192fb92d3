// A compound file that another program wrote (tests/storage/msibuild-file.sh,
// run by the ctest fixture "msibuild_file"; its path comes in
// KT_OTHER_TOOL_FILE): opened, enumerated and read.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "tests/storage/StorageSupport.h"

namespace {

using kt::test::ElementNames;
using kt::test::StorageRef;

TEST(OtherToolFile, OpensEnumeratesAndReads) {
    const char* unixPath = std::getenv("KT_OTHER_TOOL_FILE");
    ASSERT_NE(unixPath, nullptr) << "no file of the other program; run through ctest";
    const kt::test::WideString path = kt::test::W(std::string("Z:") + unixPath);
    StorageRef installer(open_Storage(path.c_str(), 1));

    // The database's three tables have names that msibuild encodes in
    // characters the ANSI code page lacks: each comes out as '?'s.
    std::vector<std::string> streams = ElementNames(installer->EnumStreams());
    std::sort(streams.begin(), streams.end());
    EXPECT_EQ(streams, (std::vector<std::string>{"\005SummaryInformation", "+-+", "?????",
                                                 "???????", "???????"}));
    EXPECT_EQ(ElementNames(installer->EnumStorages()), std::vector<std::string>{});

    std::string every(256, '\0');
    for (int value = 0; value < 256; ++value)
        every[value] = static_cast<char>(value);
    EXPECT_EQ(kt::test::ReadText(installer.get(), "+-+"), every);
}

}  // namespace
