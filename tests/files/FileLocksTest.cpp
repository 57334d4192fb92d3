// The process's lock table, and what a lock means to another process.
#include <gtest/gtest.h>

#include "kticore/files/FileLocks.h"
#include "platform/FileSystem.h"
#include "tests/files/HeldAgainstWriters.h"
#include "tests/support/Counted.h"
#include "tests/support/TestHelper.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using kt::test::FileFailureOf;
using kt::test::HeldAgainstWriters;
using kt::test::Ref;
using kt::test::WideString;
using kt::test::WriteContent;

class FileLocks : public ::testing::Test {
protected:
    kt::test::ScratchDirectory scratch;
    WideString name = scratch / KTW("locked.txt");
};

TEST_F(FileLocks, CountsByKindOneHandleAndTheEntryGoesWithTheLastUnlock) {
    WriteContent(name, "x");
    Fio_LockFile(name.c_str(), false);
    EXPECT_EQ(Fio_LockCount(name.c_str(), false), 1);
    EXPECT_EQ(Fio_LockCount(name.c_str(), true), 0);
    EXPECT_TRUE(HeldAgainstWriters(name));
    Fio_LockFile(name.c_str(), false);
    EXPECT_EQ(Fio_LockCount(name.c_str(), false), 2);
    Fio_UnlockFile(name.c_str(), true);  // of a kind not held: nothing to unlock
    EXPECT_EQ(Fio_LockCount(name.c_str(), true), 0);
    Fio_UnlockFile(name.c_str(), false);
    EXPECT_TRUE(HeldAgainstWriters(name));
    Fio_UnlockFile(name.c_str(), false);
    EXPECT_EQ(Fio_LockCount(name.c_str(), false), 0);
    EXPECT_FALSE(HeldAgainstWriters(name));
    Fio_UnlockFile(name.c_str(), false);  // nothing left to unlock
    EXPECT_EQ(Fio_LockCount(name.c_str(), false), 0);
}

// Another case is the same entry; another spelling of the path is another
// entry, whose handle the first one's keeps out.
TEST_F(FileLocks, NamesCompareWithoutCaseAndWithoutNormalisation) {
    WriteContent(name, "x");
    const WideString upper = scratch / KTW("LOCKED.TXT"), other = scratch / KTW("./locked.txt");
    Fio_LockFile(name.c_str(), false);
    Fio_LockFile(upper.c_str(), false);
    Fio_LockFile(other.c_str(), false);
    EXPECT_EQ(Fio_LockCount(name.c_str(), false), 2);
    EXPECT_EQ(Fio_LockCount(other.c_str(), false), 0);
    Fio_UnlockFile(upper.c_str(), false);
    Fio_UnlockFile(name.c_str(), false);
    EXPECT_EQ(Fio_LockCount(name.c_str(), false), 0);
}

TEST_F(FileLocks, TheFirstOfTwoReadersToCloseGivesTheLockItsHandleBack) {
    WriteContent(name, "x");
    Fio_LockFile(name.c_str(), false);
    IXFile* first = Fio_Open(name.c_str(), 0);
    IXFile* second = Fio_Open(name.c_str(), 0);
    EXPECT_FALSE(HeldAgainstWriters(name));  // stepped aside for the readers
    first->Release();
    EXPECT_TRUE(HeldAgainstWriters(name));  // back, while the second still reads
    second->Release();
    Fio_UnlockFile(name.c_str(), false);
}

TEST_F(FileLocks, FilesThatCanNotBeHeldGetNoLock) {
    Fio_LockFile(name.c_str(), true);  // missing
    EXPECT_EQ(Fio_LockCount(name.c_str(), true), 0);
    WriteContent(name, "x");
    ASSERT_TRUE(kt::sys::SetReadOnly(name.c_str(), true));
    Fio_LockFile(name.c_str(), false);
    EXPECT_EQ(Fio_LockCount(name.c_str(), false), 0);
    kt::sys::SetReadOnly(name.c_str(), false);
}

TEST_F(FileLocks, ALockOnAMissingFileTakesItsHandleWhenALocalWriterIsDone) {
    Fio_LockFile(name.c_str(), false);
    EXPECT_EQ(Fio_LockCount(name.c_str(), false), 1);
    WriteContent(name, "made while locked");
    EXPECT_TRUE(HeldAgainstWriters(name));
    Fio_UnlockFile(name.c_str(), false);
}

TEST_F(FileLocks, AnExclusiveAndANonExclusiveLockShareOneEntry) {
    WriteContent(name, "x");
    Fio_LockFile(name.c_str(), false);
    Fio_LockFile(name.c_str(), true);
    EXPECT_EQ(Fio_LockCount(name.c_str(), false), 1);
    EXPECT_EQ(Fio_LockCount(name.c_str(), true), 1);
    EXPECT_TRUE(HeldAgainstWriters(name));
    // While the exclusive lock stands not even this process gets through.
    const auto failure = FileFailureOf([&] { Fio_Open(name.c_str(), FIO_WRITE | FIO_KEEP); });
    EXPECT_EQ(failure.operation, XFILEOP_LOCK);
    EXPECT_EQ(FileFailureOf([&] { Fio_IsWritableFile(name.c_str()); }).operation, XFILEOP_LOCK);
    Fio_UnlockFile(name.c_str(), true);
    EXPECT_EQ(Fio_LockCount(name.c_str(), false), 1);
    {
        Ref<IXFile> writer(Fio_Open(name.c_str(), FIO_WRITE | FIO_KEEP));  // the lock steps aside
        writer->WriteByte('y');
    }
    EXPECT_TRUE(HeldAgainstWriters(name));  // and takes its handle back
    Fio_UnlockFile(name.c_str(), false);
}

// What the switch does to memory names is seen natively only, where a file
// on disk may carry such a name (tests/files/native).
TEST_F(FileLocks, TheSwitchLeavesFilesOnDiskLocked) {
    struct SwitchedOff {
        SwitchedOff() { EXPECT_EQ(Fio_EnableLocking(0), 1); }
        ~SwitchedOff() { EXPECT_EQ(Fio_EnableLocking(1), 0); }
    } switchedOff;
    WriteContent(name, "x");
    Fio_LockFile(name.c_str(), false);
    EXPECT_EQ(Fio_LockCount(name.c_str(), false), 1);
    EXPECT_TRUE(HeldAgainstWriters(name));
    Fio_UnlockFile(name.c_str(), false);
}

TEST_F(FileLocks, AnotherProcessCanNotWriteALockedFile) {
    WriteContent(name, "x");
    Fio_LockFile(name.c_str(), false);
    EXPECT_EQ(kt::test::RunTestHelper("write", name), 10 + XE_SHARING);
    EXPECT_EQ(kt::test::RunTestHelper("writable", name), 0);
    EXPECT_EQ(Fio_IsWritableFile(name.c_str()), 1);  // to this process it is
    EXPECT_TRUE(HeldAgainstWriters(name));  // the question gave the lock its handle back
    Fio_UnlockFile(name.c_str(), false);
    EXPECT_EQ(kt::test::RunTestHelper("write", name), 0);
    EXPECT_EQ(kt::test::ContentOf(name), "!");
}

TEST_F(FileLocks, ALockOfAnotherProcessKeepsThisOneOut) {
    WriteContent(name, "x");
    kt::test::LockInAnotherProcess other(name);
    ASSERT_TRUE(other.held);
    EXPECT_EQ(Fio_IsWritableFile(name.c_str()), 0);
    EXPECT_EQ(FileFailureOf([&] { Fio_Open(name.c_str(), FIO_WRITE | FIO_KEEP); }).code, XE_SHARING);
    EXPECT_EQ(kt::test::ContentOf(name), "x");  // reading stays open
}

}  // namespace
