// A temporary directory whose names are too long for a temporary file: the
// open of a new temporary file fails with the system's answer, and
// Fio_GetTempFileName, which never throws, gives the empty name rather than
// an earlier call's. The system's temporary directory is set natively by
// TMPDIR.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "kticore/files/FileUtilities.h"
#include "tests/files/InDirectory.h"
#include "tests/support/ScratchDirectory.h"

namespace {

TEST(LongTempDirectory, NoTemporaryFileIsMadeAndNoOldNameComesBack) {
    const char* before = std::getenv("TMPDIR");
    const std::string saved = before != nullptr ? before : "";
    const kt::test::WideString earlier = kt::test::Wide(Fio_GetTempFileName());
    ASSERT_FALSE(earlier.empty());
    Fio_DeleteFile(earlier.c_str());
    kt::test::ScratchDirectory scratch;  // current, for a name made without its directory
    const kt::test::InDirectory here(scratch.Path());
    // Too long for the temporary file's name, then for the directory itself.
    for (const size_t length : {250u, 600u}) {
        SCOPED_TRACE(length);
        const std::string directory = "/tmp/" + std::string(length - 5, 't');
        setenv("TMPDIR", directory.c_str(), 1);
        const auto failure =
            kt::test::FileFailureOf([] { Fio_Open(nullptr, FIO_WRITE | FIO_TEMPORARY); });
        EXPECT_EQ(failure.code, XE_PATH_NOT_FOUND);
        EXPECT_EQ(failure.operation, XFILEOP_WRITE);
        const kt::test::WideString place(directory.begin(), directory.end());
        EXPECT_TRUE(failure.name.empty() || failure.name == place + KTW("/"));
        EXPECT_EQ(kt::test::Wide(Fio_GetTempFileName()), KTW(""));
        EXPECT_TRUE(scratch.Entries().empty());
    }
    if (before != nullptr)
        setenv("TMPDIR", saved.c_str(), 1);
    else
        unsetenv("TMPDIR");
}

}  // namespace
