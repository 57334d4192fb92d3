// A compound file behind a URL, worked on as a local copy: downloaded from
// the real FTP server of the ctest fixture (tests/support/FtpServer.h), never
// uploaded, and deleted with the storage.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/storage/StorageSupport.h"
#include "tests/support/FtpServer.h"
#include "tests/support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;
using kt::test::FtpUrl;
using kt::test::ReadText;
using kt::test::StorageRef;
using kt::test::WideString;
using kt::test::WriteText;

class UrlStorage : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(fs::is_directory(kt::test::FtpServerRoot()))
            << "no FTP server directory; run through ctest";
        WriteText(StorageRef(new_Storage(remote.c_str(), 0)).get(), "s", "remote");
        remoteBytes = kt::test::ContentOf(remote);
    }
    void TearDown() override { fs::remove(fs::path(remote)); }

    const WideString remote = (kt::test::FtpServerRoot() / "remote.stg").wstring();
    const WideString url = FtpUrl(KTW("remote.stg"));
    std::string remoteBytes;
    const kt::test::TemporaryDirectory temporary;
};

// The caller's local name and one of the library's own: the copy goes with
// the storage either way.
TEST_F(UrlStorage, CommitsReachTheLocalCopyAloneWhichGoesAtRelease) {
    for (const WideString& localName : {WideString(), temporary / KTW("mine.stg")}) {
        SCOPED_TRACE(localName.empty() ? "temporary copy" : "caller's copy");
        {
            StorageRef storage(open_UrlStorage(url.c_str(), localName.c_str(), 0));
            EXPECT_EQ(kt::test::Wide(storage->GetName()), url);
            IXStorage* local = nullptr;
            ASSERT_EQ(storage->QueryInterface(typeid(IXStorage), reinterpret_cast<void**>(&local)),
                      1);
            StorageRef localRef(local);
            EXPECT_NE(kt::test::Wide(local->GetName()), url);
            if (!localName.empty()) {
                EXPECT_EQ(kt::test::Wide(local->GetName()), localName);
            }
            EXPECT_EQ(ReadText(storage.get(), "s"), "remote");
            WriteText(storage.get(), "s", "local");
            EXPECT_EQ(storage->Commit(), S_OK);
            // What a commit reached, a revert keeps.
            static_cast<CStorage*>(local)->Revert();
            EXPECT_EQ(ReadText(local, "s"), "local");
        }
        EXPECT_EQ(kt::test::ContentOf(remote), remoteBytes);
        EXPECT_TRUE(temporary.Entries().empty()) << "the local copy outlived its storage";
    }
}

TEST_F(UrlStorage, AFailedDownloadLeavesNoCopy) {
    for (const WideString& missing :
         {FtpUrl(KTW("missing.stg")), WideString(KTW("ftp://127.0.0.1:1/x.stg"))}) {
        EXPECT_EQ(kt::test::FileFailureOf([&] { open_Storage(missing.c_str(), 1); }),
                  (kt::test::FileFailure{XE_NETWORK, XFILEOP_OPEN, {}}));
        EXPECT_TRUE(temporary.Entries().empty());
    }
}

}  // namespace
