// URL files through the real WinInet under Wine, against the real FTP server
// of the ctest fixture (tests/support/FtpServer.h). Nothing listens on
// 127.0.0.2: a server that is down.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <thread>

#include "kticore/files/UrlFiles.h"
#include "platform/Ftp.h"
#include "tests/support/Counted.h"
#include "tests/support/FtpServer.h"
#include "tests/support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;
using kt::test::FileFailureOf;
using kt::test::Ref;
using kt::test::WideString;

using kt::test::FtpServerDirectory;
using kt::test::FtpUrl;
using kt::test::kFtpServer;
const KTWCHAR* const kServerDown = KTW("127.0.0.2");

class UrlFiles : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(fs::is_directory(root)) << "no FTP server directory; run through ctest";
        fs::create_directories(root / "sub");
    }
    void TearDown() override {
        std::error_code ignored;  // the server's next start clears what stays
        for (const auto& entry : fs::directory_iterator(root))
            if (entry.path().filename() != "readonly" && entry.path().filename() != "outside")
                fs::remove_all(entry.path(), ignored);
    }

    fs::path OnServer(const WideString& remote) const { return (root / remote).make_preferred(); }

    void Plant(const WideString& remote, const std::string& content) const {
        std::ofstream(OnServer(remote), std::ios::binary) << content;
    }

    std::string RemoteContent(const WideString& remote) const {
        return kt::test::ContentOf(OnServer(remote).wstring());
    }

    static void Write(IXFile* file, const std::string& text) {
        file->Write(text.data(), static_cast<DWORD>(text.size()));
    }

    static std::string ReadAll(IXFile* file) {
        std::string content(file->GetLength(), '\0');
        EXPECT_EQ(file->Read(content.data(), static_cast<DWORD>(content.size())), content.size());
        return content;
    }

    // The fixture's server stops listening while its "offline" file exists.
    void SetServerAway(bool away) const {
        const fs::path offline = FtpServerDirectory() / "offline";
        if (away)
            std::ofstream{offline};
        else
            fs::remove(offline);
        for (int tries = 0; tries < 200; ++tries) {
            if (kt::sys::FtpSession(kFtpServer, KTW("kt"), KTW("secret")).IsOpen() != away)
                return;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        FAIL() << "the server did not " << (away ? "go away" : "come back");
    }

    const fs::path root = kt::test::FtpServerRoot();
    const kt::test::TemporaryDirectory temporary;
};

TEST_F(UrlFiles, OpenDownloadsTheWholeFileAndGivesTheUrlAsName) {
    std::string content(300000, '\0');  // more than two views of the local copy
    std::mt19937 random(7);
    for (char& byte : content)
        byte = static_cast<char>(random());
    Plant(KTW("sub/data.bin"), content);
    const WideString url = FtpUrl(KTW("sub/data.bin"));
    {
        const Ref<IXFile> file(Fio_Open(url.c_str(), 0));
        EXPECT_EQ(WideString(file->GetName()), url);
        EXPECT_EQ(ReadAll(file.get()), content);
    }
    EXPECT_TRUE(temporary.Entries().empty()) << "the local copy outlived its file";
    FioFileInfo info = {};
    Fio_GetFileInfo(url.c_str(), &info);  // sizes come from the listing
    EXPECT_EQ(info.size, content.size());
    EXPECT_GE(info.year, 2026u);

    // The URL moniker's cache: the success path only. Under Wine a failed
    // FTP download through the moniker never returns, so its failures are
    // the platform's limitation and not tested here.
    const KTWCHAR* cached = Fio_DownloadToCacheFile(url.c_str());
    ASSERT_NE(cached, nullptr);
    EXPECT_EQ(kt::test::ContentOf(cached), content);
}

TEST_F(UrlFiles, TheRemoteFileChangesOnlyAtCommit) {
    Plant(KTW("sub/target.txt"), "old");
    const WideString url = FtpUrl(KTW("sub/target.txt"));
    {
        const Ref<IXOutFile> out(Fio_OpenOut(url.c_str(), 0));
        Write(out.get(), "dropped");
        EXPECT_EQ(RemoteContent(KTW("sub/target.txt")), "old");
    }
    EXPECT_EQ(RemoteContent(KTW("sub/target.txt")), "old");
    EXPECT_TRUE(temporary.Entries().empty());
    for (const WideString remote : {KTW("sub/target.txt"), KTW("sub/fresh.txt"), KTW("top.txt")}) {
        SCOPED_TRACE(::testing::PrintToString(remote));
        const Ref<IXOutFile> out(Fio_OpenOut(FtpUrl(remote).c_str(), 0));
        EXPECT_EQ(WideString(out->GetName()), FtpUrl(remote));
        Write(out.get(), "new content");
        out->Commit();
        EXPECT_EQ(RemoteContent(remote), "new content");
    }
    EXPECT_TRUE(temporary.Entries().empty());
}

TEST_F(UrlFiles, AnUploadMakesOneMissingLevelOfDirectory) {
    const WideString local = temporary / KTW("local.txt");
    kt::test::WriteContent(local, "data");
    EXPECT_NE(Fio_UrlPutFile(FtpUrl(KTW("made/a.txt")).c_str(), local.c_str()), 0);
    EXPECT_EQ(RemoteContent(KTW("made/a.txt")), "data");
    EXPECT_EQ(Fio_UrlPutFile(FtpUrl(KTW("x/y/a.txt")).c_str(), local.c_str()), 0);
    EXPECT_FALSE(fs::exists(OnServer(KTW("x"))));
}

TEST_F(UrlFiles, FailuresAreNumberedNamedAndLeaveNoTemporaryFile) {
    Plant(KTW("sub/there.txt"), "x");
    const WideString cases[] = {
        FtpUrl(KTW("sub/missing.txt")),
        FtpUrl(KTW("nodir/there.txt")),
        FtpUrl(KTW("sub/there.txt"), KTW("wrong")),
        FtpUrl(KTW("sub/there.txt"), KTW("secret"), kServerDown),
    };
    for (const WideString& url : cases) {
        SCOPED_TRACE(::testing::PrintToString(url));
        const auto open = FileFailureOf([&] { Fio_Open(url.c_str(), 0); });
        EXPECT_EQ(open.operation, XFILEOP_OPEN);
        EXPECT_EQ(open.name, url);
        const auto info = FileFailureOf([&] {
            FioFileInfo record;
            Fio_GetFileInfo(url.c_str(), &record);
        });
        EXPECT_EQ(info.operation, XFILEOP_URL_INFO);
        EXPECT_EQ(info.name, url);
        EXPECT_EQ(Fio_IsFileExist(url.c_str()), 0);
        EXPECT_TRUE(temporary.Entries().empty());
    }
}

TEST_F(UrlFiles, DeletionsDirectoriesAndUploadsAnswerAsTheServerLetsThem) {
    Plant(KTW("sub/gone.txt"), "x");
    EXPECT_EQ(Fio_UrlDeleteFile(FtpUrl(KTW("sub/missing.txt")).c_str()), 0);
    EXPECT_NE(Fio_UrlDeleteFile(FtpUrl(KTW("sub/gone.txt")).c_str()), 0);
    EXPECT_FALSE(fs::exists(OnServer(KTW("sub/gone.txt"))));

    Fio_UrlCreateDirectory(FtpUrl(KTW("sub")).c_str());  // there already: nothing to do
    Fio_UrlCreateDirectory(FtpUrl(KTW("sub/level")).c_str());
    EXPECT_TRUE(fs::is_directory(OnServer(KTW("sub/level"))));
    const WideString twoLevels = FtpUrl(KTW("new/level"));
    const auto deep = FileFailureOf([&] { Fio_UrlCreateDirectory(twoLevels.c_str()); });
    EXPECT_EQ(deep.operation, XFILEOP_CREATE_DIRECTORY);
    EXPECT_EQ(deep.name, twoLevels);

    const WideString local = temporary / KTW("local.txt");
    EXPECT_EQ(Fio_UrlPutFile(FtpUrl(KTW("sub/put.txt")).c_str(), local.c_str()), 0);  // no local file
    EXPECT_FALSE(fs::exists(OnServer(KTW("sub/put.txt"))));
    kt::test::WriteContent(local, "data");
    for (const WideString& refused :
         {FtpUrl(KTW("sub/put.txt"), KTW("wrong")), FtpUrl(KTW("sub/put.txt"), KTW("secret"), kServerDown)}) {
        SCOPED_TRACE(::testing::PrintToString(refused));
        EXPECT_EQ(Fio_UrlPutFile(refused.c_str(), local.c_str()), 0);
        EXPECT_EQ(kt::test::PlainFailureOf([&] { Fio_OpenOut(refused.c_str(), 0); }), XE_ACCESS_DENIED);
    }
    EXPECT_FALSE(fs::exists(OnServer(KTW("sub/put.txt"))));
    fs::remove(local);
    EXPECT_TRUE(temporary.Entries().empty());
}

TEST_F(UrlFiles, ProbesFindTheExactNameInAnyLetterCase) {
    for (const WideString planted :
         {KTW("MixedCase.TXT"), KTW("other.txt"), KTW("noext"), KTW("with space.txt")})
        Plant(KTW("sub/") + planted, "x");
    fs::create_directory(OnServer(KTW("sub/inner")));
    const struct {
        const KTWCHAR* asked;
        int exists;
    } cases[] = {
        {KTW("sub/mixedcase.txt"), 1},
        {KTW("sub/another.txt"), 0},  // only the exact name answers, not its extension
        // Wine's client matches the pattern "*." against no name at all; names
        // without extension are found because the library lists "*" for them.
        {KTW("sub/noext"), 1},
        {KTW("sub/inner"), 1},
        // Wine's listing cuts a name at its first blank: "with" is listed.
        {KTW("sub/with space.txt"), 0},
    };
    for (const auto& probe : cases) {
        SCOPED_TRACE(::testing::PrintToString(WideString(probe.asked)));
        EXPECT_EQ(Fio_IsFileExist(FtpUrl(probe.asked).c_str()), probe.exists);
    }
}

TEST_F(UrlFiles, AReadOnlyDirectoryIsNotWritableAndAWritableOneKeepsNoProbe) {
    Plant(KTW("readonly/locked.txt"), "locked");
    EXPECT_EQ(Fio_UrlIsWritableDir(FtpUrl(KTW("readonly")).c_str()), 0);
    EXPECT_EQ(Fio_IsWritableFile(FtpUrl(KTW("readonly/locked.txt")).c_str()), 0);
    EXPECT_EQ(Fio_IsWritableFile(FtpUrl(KTW("readonly/new.txt")).c_str()), 0);
    EXPECT_EQ(kt::test::PlainFailureOf([&] { Fio_OpenOut(FtpUrl(KTW("readonly/locked.txt")).c_str(), 0); }),
              XE_ACCESS_DENIED);
    EXPECT_EQ(RemoteContent(KTW("readonly/locked.txt")), "locked");
    fs::remove(OnServer(KTW("readonly/locked.txt")));

    EXPECT_EQ(Fio_UrlIsWritableDir(FtpUrl(KTW("sub")).c_str()), 1);
    EXPECT_EQ(Fio_IsWritableFile(FtpUrl(KTW("sub/new.txt")).c_str()), 1);
    EXPECT_TRUE(fs::is_empty(OnServer(KTW("sub"))));
    for (const auto& entry : fs::directory_iterator(root))  // a probe of "sub" lost its way
        EXPECT_NE(entry.path().extension(), ".tmp") << entry.path();
}

TEST_F(UrlFiles, ACommitWhileTheServerIsAwayFailsKeepsTheWorkAndTriesAgain) {
    Plant(KTW("sub/kept.txt"), "old");
    const WideString url = FtpUrl(KTW("sub/kept.txt"));
    const Ref<IXOutFile> out(Fio_OpenOut(url.c_str(), 0));
    Write(out.get(), "new");
    SetServerAway(true);
    const auto failure = FileFailureOf([&] { out->Commit(); });
    SetServerAway(false);
    EXPECT_EQ(failure.operation, XFILEOP_WRITE);
    EXPECT_EQ(failure.name, url);
    EXPECT_EQ(RemoteContent(KTW("sub/kept.txt")), "old");
    EXPECT_FALSE(temporary.Entries().empty()) << "the local work is gone";
    out->Commit();
    EXPECT_EQ(RemoteContent(KTW("sub/kept.txt")), "new");
    EXPECT_TRUE(temporary.Entries().empty());
}

TEST_F(UrlFiles, NamesTravelInTheAnsiCodePage) {
    const WideString german = KTW("sub/Gr\u00f6\u00dfe.txt");
    {
        const Ref<IXOutFile> out(Fio_OpenOut(FtpUrl(german).c_str(), 0));
        Write(out.get(), "umlauts");
        out->Commit();
    }
    EXPECT_EQ(RemoteContent(german), "umlauts");
    EXPECT_EQ(Fio_IsFileExist(FtpUrl(german).c_str()), 1);
    const Ref<IXFile> file(Fio_Open(FtpUrl(german).c_str(), 0));
    EXPECT_EQ(ReadAll(file.get()), "umlauts");

    // A character outside the code page goes out as a question mark: the
    // server stores "?.txt" in a directory of its own, which TearDown leaves
    // to the server's next start (a Windows name can not hold "?").
    const WideString local = temporary / KTW("local.txt");
    kt::test::WriteContent(local, "cyrillic");
    EXPECT_NE(Fio_UrlPutFile(FtpUrl(KTW("outside/\u0436.txt")).c_str(), local.c_str()), 0);
    EXPECT_FALSE(fs::exists(OnServer(KTW("outside/\u0436.txt"))));
    EXPECT_EQ(std::distance(fs::directory_iterator(OnServer(KTW("outside"))), {}), 1);
}

// What the library relies on from WinInet under Wine, and what it takes as
// it comes: the client's errors (all of which the file layer reports as a
// generic failure, since they have no code of their own).
TEST_F(UrlFiles, TheClientNamesEachKindOfRefusal) {
    {
        kt::sys::FtpSession wrongPassword(kFtpServer, KTW("kt"), KTW("wrong"));
        EXPECT_FALSE(wrongPassword.IsOpen());
        EXPECT_EQ(kt::sys::LastFileError(), kt::sys::kErrorLoginFailure);
    }
    {
        kt::sys::FtpSession down(kServerDown, KTW("kt"), KTW("secret"));
        EXPECT_FALSE(down.IsOpen());
        EXPECT_EQ(kt::sys::LastFileError(), kt::sys::kErrorCannotConnect);
    }
    kt::sys::FtpSession session(kFtpServer, KTW("kt"), KTW("secret"));
    ASSERT_TRUE(session.IsOpen());
    EXPECT_FALSE(session.GetFile(KTW("/sub/missing.txt"), (temporary / KTW("x")).c_str()));
    EXPECT_EQ(kt::sys::LastFileError(), kt::sys::kErrorInternetExtended);
    EXPECT_EQ(XErrorFromWin32(kt::sys::kErrorInternetExtended), XE_GENERIC);
}

}  // namespace
