// Natively a file on disk may carry a memory file's name: only the locking
// switch decides whether a lock of that name reaches it.
#include <gtest/gtest.h>

#include "kticore/files/FileLocks.h"
#include "tests/files/InDirectory.h"
#include "tests/support/Counted.h"
#include "tests/support/ScratchDirectory.h"

namespace {

TEST(LockSwitch, DecidesWhetherAMemoryNameIsLocked) {
    kt::test::ScratchDirectory scratch;
    const kt::test::InDirectory here(scratch.Path());
    const KTWCHAR* memoryName = KTW("fmem::1000,20");
    kt::test::WriteContent(scratch / memoryName, "a file on disk");
    for (const int enabled : {1, 0}) {
        const int previous = Fio_EnableLocking(enabled);
        Fio_LockFile(memoryName, false);
        EXPECT_EQ(Fio_LockCount(memoryName, false), enabled);
        Fio_UnlockFile(memoryName, false);
        Fio_EnableLocking(previous);
    }
}

}  // namespace
