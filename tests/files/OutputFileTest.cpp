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

TEST_F(OutputFile, KeepAppendsToTheOldContent) {
    WriteContent(target, "old ");
    IXOutFile* out = Fio_OpenOut(target.c_str(), FIO_KEEP);
    EXPECT_EQ(out->GetLength(), 4u);
    EXPECT_EQ(out->GetPosition(), 4u);
    Write(out, "and new");
    out->Commit();
    out->Release();
    EXPECT_EQ(ContentOf(target), "old and new");

    const WideString absent = scratch / KTW("absent.txt");
    IXOutFile* fresh = Fio_OpenOut(absent.c_str(), FIO_KEEP);
    EXPECT_EQ(fresh->GetLength(), 0u);
    Write(fresh, "only new");
    fresh->Commit();
    fresh->Release();
    EXPECT_EQ(ContentOf(absent), "only new");
}

TEST_F(OutputFile, ABareNameWritesBesideItInTheCurrentDirectory) {
    KTWCHAR previous[512];
    Fio_GetCurrentDirectory(previous, 512);
    Fio_SetCurrentDirectory(scratch.Path().c_str());
    IXOutFile* out = Fio_OpenOut(KTW("bare.txt"), 0);
    const size_t temporaries = TemporaryFiles();
    Write(out, "bare");
    out->Commit();
    out->Release();
    Fio_SetCurrentDirectory(previous);
    EXPECT_EQ(temporaries, 1u);
    EXPECT_EQ(ContentOf(scratch / KTW("bare.txt")), "bare");
}

TEST_F(OutputFile, AnotherHoldersLockSurvivesTheReplacement) {
    WriteContent(target, "old");
    Fio_LockFile(target.c_str(), false);
    IXOutFile* out = Fio_OpenOut(target.c_str(), 0);
    Write(out, "new");
    out->Commit();
    out->Release();
    EXPECT_EQ(Fio_LockCount(target.c_str(), false), 1);
    EXPECT_EQ(ContentOf(target), "new");
    EXPECT_EQ(kt::test::RunTestHelper("write", target), 10 + XE_SHARING);  // held: the new file
    Fio_UnlockFile(target.c_str(), false);
}

TEST_F(OutputFile, AnExclusiveLockStopsTheCommitAndKeepsTheWork) {
    WriteContent(target, "old");
    IXOutFile* out = Fio_OpenOut(target.c_str(), 0);
    Write(out, "new");
    Fio_LockFile(target.c_str(), true);
    EXPECT_EQ(FileFailureOf([&] { out->Commit(); }).operation, XFILEOP_LOCK);
    Fio_UnlockFile(target.c_str(), true);
    out->Release();
    EXPECT_EQ(ContentOf(target), "old");
    EXPECT_EQ(TemporaryFiles(), 1u);  // complete, for whoever wants it
    EXPECT_EQ(Fio_LockCount(target.c_str(), false), 0);
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
    for (const WideString& bad : {WideString(), scratch / KTW("nul"), scratch / KTW("LPT1.log"),
                                  scratch / WideString(300, 'n'),
                                  scratch / WideString(512 - scratch.Path().size() - 1, 'n')}) {
        const auto failure = FileFailureOf([&] { Fio_OpenOut(bad.c_str(), 0); });
        EXPECT_EQ(failure.code, XE_PATH_NOT_FOUND);
        EXPECT_EQ(failure.operation, XFILEOP_OPEN);
    }
    EXPECT_EQ(ContentOf(target), "read-only");
    EXPECT_EQ(scratch.Entries().size(), 1u);
}

// Whether a file holds `size` bytes of one letter: a complete generation.
bool IsComplete(const std::string& content, size_t size) {
    return content.size() == size && content.find_first_not_of(content[0]) == std::string::npos;
}

TEST_F(OutputFile, AKilledWriterLeavesTheOldOrTheNewFileNeverAMixture) {
#if defined(_WIN32)
    // Under Wine a process takes long to start: fewer kills, later.
    constexpr int kKills = 12, kEarliestMs = 300, kLatestMs = 1500;
#else
    constexpr int kKills = 60, kEarliestMs = 0, kLatestMs = 60;
#endif
    constexpr size_t kSize = 300000;  // more than two views
    WriteContent(target, std::string(kSize, '0'));
    std::mt19937 random(20261123);
    std::uniform_int_distribution<int> delay(kEarliestMs, kLatestMs);
    int mixtures = 0, generationsSeen = 0;
    char last = '0';
    for (int kill = 0; kill < kKills; ++kill) {
        {
            kt::test::ChildProcess writer(KT_TEST_HELPER,
                                          {"commit-loop", kt::test::Narrow(target), std::to_string(kSize)});
            ASSERT_TRUE(writer.Started());
            std::this_thread::sleep_for(std::chrono::milliseconds(delay(random)));
            writer.Kill();
        }
        // A target that is missing counts as a mixture: neither file is there.
        const std::string content = Fio_IsFileExist(target.c_str()) ? ContentOf(target) : "";
        if (!IsComplete(content, kSize))
            ++mixtures;
        else if (content[0] != last)
            ++generationsSeen;
        if (!content.empty())
            last = content[0];
    }
    std::printf("%d kills, %d changes of generation seen, %d mixtures, %zu temporary files left\n",
                kKills, generationsSeen, mixtures, TemporaryFiles());
    EXPECT_EQ(mixtures, 0);
    EXPECT_GT(generationsSeen, 0);  // the kills did land while commits happened

    // What the killed writers left behind does not stand in the next one's way.
    IXOutFile* out = Fio_OpenOut(target.c_str(), 0);
    Write(out, "after the kills");
    out->Commit();
    out->Release();
    EXPECT_EQ(ContentOf(target), "after the kills");
}

}  // namespace
