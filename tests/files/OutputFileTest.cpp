// Output files: the target changes only at Commit, and it is always either
// the complete old file or the complete new one, also when the writer is
// killed at any moment.
#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>
#include <thread>

#include "kticore/files/FileLocks.h"
#include "platform/FileSystem.h"
#include "tests/files/InDirectory.h"
#include "tests/support/Counted.h"
#include "tests/support/TestHelper.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using kt::test::ContentOf;
using kt::test::FileFailureOf;
using kt::test::Ref;
using kt::test::WideString;
using kt::test::WriteContent;

class OutputFile : public ::testing::Test {
protected:
    size_t TemporaryFiles() const {
        size_t count = 0;
        for (const WideString& entry : scratch.Entries())
            count += entry.compare(0, 3, KTW("KTP")) == 0;
        return count;
    }

    void Write(IXOutFile* out, const std::string& text) {
        out->Write(text.data(), static_cast<DWORD>(text.size()));
    }

    kt::test::ScratchDirectory scratch;
    WideString target = scratch / KTW("target.txt");
};

TEST_F(OutputFile, ANewTargetAppearsAtCommitAndNothingElseRemains) {
    IXOutFile* out = Fio_OpenOut(target.c_str(), 0);
    EXPECT_EQ(kt::test::Wide(out->GetName()), target);
    Write(out, "new content");
    EXPECT_EQ(Fio_IsFileExist(target.c_str()), 0);
    EXPECT_EQ(TemporaryFiles(), 1u);  // beside the target
    out->Commit();
    out->Commit();  // harmless
    out->Release();
    EXPECT_EQ(ContentOf(target), "new content");
    EXPECT_EQ(scratch.Entries().size(), 1u);
}

TEST_F(OutputFile, ReleaseWithoutCommitLeavesTheTargetAsItWas) {
    WriteContent(target, "old content");
    IXOutFile* out = Fio_OpenOut(target.c_str(), 0);
    EXPECT_EQ(Fio_LockCount(target.c_str(), false), 1);
    EXPECT_EQ(ContentOf(target), "old content");  // readable while written
    Write(out, "abandoned");
    out->Release();
    EXPECT_EQ(ContentOf(target), "old content");
    EXPECT_EQ(Fio_LockCount(target.c_str(), false), 0);
    EXPECT_EQ(scratch.Entries().size(), 1u);
}

TEST_F(OutputFile, ABareNameWritesBesideItInTheCurrentDirectory) {
    const kt::test::InDirectory here(scratch.Path());
    Ref<IXOutFile> out(Fio_OpenOut(KTW("bare.txt"), 0));
    EXPECT_EQ(TemporaryFiles(), 1u);
    Write(out.get(), "bare");
    out->Commit();
    EXPECT_EQ(ContentOf(scratch / KTW("bare.txt")), "bare");
}

// The empty name is no target that the system can make: the work is done
// and fails where the temporary file is to take its place, and is kept.
TEST_F(OutputFile, AnEmptyTargetFailsAtCommit) {
    const kt::test::InDirectory here(scratch.Path());
    Ref<IXOutFile> out(Fio_OpenOut(KTW(""), 0));
    Write(out.get(), "work");
    const auto failure = FileFailureOf([&] { out->Commit(); });
    EXPECT_EQ(failure.code, XE_PATH_NOT_FOUND);
    EXPECT_EQ(failure.operation, XFILEOP_RENAME);
    EXPECT_EQ(ContentOf(failure.name), "work");
}

// Each writer has its own temporary file; with FIO_KEEP each starts from
// the old content, although the other's lock holds the target.
TEST_F(OutputFile, OfTwoWritersOnOneTargetTheLaterCommitWins) {
    for (const int flags : {0, static_cast<int>(FIO_KEEP)})
    for (const bool targetExists : {true, false}) {
        SCOPED_TRACE(std::string(targetExists ? "existing" : "new") + " target, flags " +
                     std::to_string(flags));
        const std::string old = targetExists && flags == FIO_KEEP ? "old" : "";
        if (targetExists)
            WriteContent(target, "old");
        Ref<IXOutFile> first(Fio_OpenOut(target.c_str(), flags));
        Ref<IXOutFile> second(Fio_OpenOut(target.c_str(), flags));
        Write(first.get(), "first");
        Write(second.get(), "second");
        second->Commit();
        EXPECT_EQ(ContentOf(target), old + "second");
        first->Commit();
        EXPECT_EQ(ContentOf(target), old + "first");
        EXPECT_EQ(Fio_LockCount(target.c_str(), false), 0);
        EXPECT_EQ(TemporaryFiles(), 0u);
        Fio_DeleteFile(target.c_str());
    }
}

TEST_F(OutputFile, AnotherHoldersLockSurvivesTheReplacement) {
    WriteContent(target, "old");
    Fio_LockFile(target.c_str(), false);
    IXOutFile* out = Fio_OpenOut(target.c_str(), FIO_KEEP);
    EXPECT_EQ(out->GetPosition(), 3u);  // appends
    Write(out, " and new");
    out->Commit();
    out->Release();
    EXPECT_EQ(Fio_LockCount(target.c_str(), false), 1);
    EXPECT_EQ(ContentOf(target), "old and new");
    EXPECT_EQ(kt::test::RunTestHelper("write", target), 10 + XE_SHARING);  // held: the new file
    Fio_UnlockFile(target.c_str(), false);
}

// A Commit that can not replace the target leaves it as it was and keeps the
// complete work for whoever wants it.
TEST_F(OutputFile, ACommitStoppedByAnExclusiveLockOrAnOpenTargetKeepsTheWork) {
    WriteContent(target, "old");
    for (const DWORD stoppedAt : {XFILEOP_LOCK, XFILEOP_DELETE}) {
        SCOPED_TRACE(stoppedAt);
        IXOutFile* out = Fio_OpenOut(target.c_str(), 0);
        Write(out, "new");
        IXFile* reader = nullptr;  // an open without delete sharing: no replacement
        if (stoppedAt == XFILEOP_LOCK)
            Fio_LockFile(target.c_str(), true);
        else
            reader = Fio_Open(target.c_str(), 0);
        EXPECT_EQ(FileFailureOf([&] { out->Commit(); }).operation, stoppedAt);
        if (reader != nullptr)
            reader->Release();
        else
            Fio_UnlockFile(target.c_str(), true);
        out->Release();
        EXPECT_EQ(ContentOf(target), "old");
        EXPECT_EQ(Fio_LockCount(target.c_str(), false), 0);
        ASSERT_EQ(TemporaryFiles(), 1u);
        for (const WideString& entry : scratch.Entries())
            if (entry != KTW("target.txt")) {
                EXPECT_EQ(ContentOf(scratch / entry), "new");
                Fio_DeleteFile((scratch / entry).c_str());
            }
    }
}

TEST_F(OutputFile, TargetsThatCanNotBeWrittenAreRefusedAndLeaveNothing) {
    const auto refusedPlainly = [&](const WideString& bad, DWORD code) {
        try {
            Fio_OpenOut(bad.c_str(), 0);
            ADD_FAILURE() << "accepted";
        } catch (const CXFileException&) {
            ADD_FAILURE() << "a file exception where a plain one was due";
        } catch (const CXException& failure) {
            EXPECT_EQ(failure.code, code);
        }
    };
    WriteContent(target, "read-only");
    ASSERT_TRUE(kt::sys::SetReadOnly(target.c_str(), true));
    refusedPlainly(target, XE_ACCESS_DENIED);
    kt::sys::SetReadOnly(target.c_str(), false);
    refusedPlainly(scratch.Path(), XE_ACCESS_DENIED);  // a directory
    refusedPlainly(scratch / KTW("no/such/target.txt"), XE_PATH_NOT_FOUND);
    {
        kt::test::LockInAnotherProcess other(target);
        ASSERT_TRUE(other.held);
        refusedPlainly(target, XE_ACCESS_DENIED);
    }
    const size_t parts = 512 - scratch.Path().size() - 2;  // of 512 units, none over 255
    for (const WideString& bad : {scratch / WideString(300, 'n'),
                                  scratch / (WideString(parts / 2, 'd') + KTW("/") +
                                             WideString(parts - parts / 2, 'n'))}) {
        const auto failure = FileFailureOf([&] { Fio_OpenOut(bad.c_str(), 0); });
        EXPECT_EQ(failure.code, XE_PATH_NOT_FOUND);
        EXPECT_EQ(failure.operation, XFILEOP_OPEN);
    }
    EXPECT_EQ(ContentOf(target), "read-only");
    EXPECT_EQ(scratch.Entries().size(), 1u);
}

// What the writer of the killed-writer test commits as its generation g.
std::string Generation(unsigned g, size_t size) {
    return std::string(size, static_cast<char>('A' + g % 26));
}

TEST_F(OutputFile, AKilledWriterLeavesTheOldOrTheNewFileNeverAMixture) {
    constexpr int kKills = 16;
    constexpr size_t kSize = 300000;  // more than two views
    WriteContent(target, std::string(kSize, '0'));
    // The writer makes the file target.N after its N-th commit.
    const auto marker = [&](unsigned n) {
        const std::string digits = std::to_string(n);
        return target + KTW(".") + WideString(digits.begin(), digits.end());
    };
    std::mt19937 random(20261123);
    for (int kill = 0; kill < kKills; ++kill) {
        const unsigned commits = kt::test::KillDuringACommit(
            {"commit-loop", kt::test::Narrow(target), std::to_string(kSize)}, marker, random);
        ASSERT_NE(commits, 0u) << "the writer did not get going";
        // The N-th reported commit wrote generation N - 1; the next one may
        // have landed before its report. A missing target is neither.
        const std::string content = Fio_IsFileExist(target.c_str()) ? ContentOf(target) : "";
        EXPECT_TRUE(content == Generation(commits - 1, kSize) ||
                    content == Generation(commits, kSize))
            << "kill " << kill << " after " << commits << " commits: " << content.size()
            << " bytes";
        for (unsigned n = 1; n <= commits + 1; ++n)
            if (Fio_IsFileExist(marker(n).c_str()))
                Fio_DeleteFile(marker(n).c_str());
    }

    // What the killed writers left behind does not stand in the next one's way.
    IXOutFile* out = Fio_OpenOut(target.c_str(), 0);
    Write(out, "after the kills");
    out->Commit();
    out->Release();
    EXPECT_EQ(ContentOf(target), "after the kills");
}

}  // namespace
