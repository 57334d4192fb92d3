// The private profile functions as the profile-file parameters use them. The
// same cases run on the Windows build against the platform's own functions
// (Wine's) and natively against ours: passing on both is what shows that
// ours behave alike.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/FileSystem.h"
#include "platform/ProfileFile.h"
#include "tests/files/InDirectory.h"
#include "tests/support/ScratchDirectory.h"

namespace kt::test {
namespace {

// The listings and values are read into a buffer of this size, as the
// parameters read them.
constexpr DWORD kListing = 64000;
constexpr char kUntouched = '#';
using Strings = std::vector<std::string>;

Strings Names(const std::string& list) {
    Strings names;
    for (size_t start = 0; start < list.size();) {
        const size_t end = std::min(list.find('\0', start), list.size());
        names.push_back(list.substr(start, end - start));
        start = end + 1;
    }
    return names;
}

class ProfileFile : public ::testing::Test {
protected:
    std::string Narrow(const WideString& name) { return std::string(name.begin(), name.end()); }

    std::string Value(const char* section, const char* key, DWORD size = kListing) {
        buffer.assign(size + 1, kUntouched);
        const DWORD result =
            sys::ReadProfileString(section, key, buffer.data(), size, file.c_str());
        EXPECT_EQ(buffer[result], 0);
        EXPECT_EQ(buffer[size], kUntouched);
        return buffer.substr(0, result);
    }
    Strings Keys(const char* section) {
        buffer.assign(kListing, kUntouched);
        return Names(buffer.substr(
            0, sys::ReadProfileKeyNames(section, buffer.data(), kListing, file.c_str())));
    }
    Strings Sections() {
        buffer.assign(kListing, kUntouched);
        return Names(
            buffer.substr(0, sys::ReadProfileSectionNames(buffer.data(), kListing, file.c_str())));
    }
    bool Write(const char* section, const char* key, const char* text) {
        return sys::WriteProfileString(section, key, text, file.c_str());
    }
    std::string Content() { return ContentOf(wideFile); }
    void SetContent(const std::string& text) { WriteContent(wideFile, text); }

    ScratchDirectory directory;
    WideString wideFile = directory / KTW("settings.ini");
    std::string file = Narrow(wideFile);
    std::string buffer;
};

TEST_F(ProfileFile, MissingFileReadsEmptyAndIsNotMadeByReadsOrRemovals) {
    EXPECT_EQ(Value("\\", "@"), "");
    EXPECT_TRUE(Keys("\\").empty());
    EXPECT_TRUE(Sections().empty());
    EXPECT_EQ(buffer[0], 0);
    EXPECT_TRUE(sys::DeleteProfileKey("\\", "@", file.c_str()));
    EXPECT_TRUE(sys::DeleteProfileSection("\\", file.c_str()));
    EXPECT_EQ(sys::FileAttributes(wideFile.c_str()), sys::kNoAttributes);
}

TEST_F(ProfileFile, FirstWriteMakesTheFileButNotItsDirectory) {
    ASSERT_TRUE(Write("\\", "@", "e"));
    EXPECT_EQ(Content(), "[\\]\r\n@=e\r\n");

    const std::string nested = Narrow(directory / KTW("missing/settings.ini"));
    EXPECT_FALSE(sys::WriteProfileString("\\", "@", "e", nested.c_str()));
    EXPECT_EQ(sys::FileAttributes((directory / KTW("missing")).c_str()), sys::kNoAttributes);
}

TEST_F(ProfileFile, ListsInFileOrderAndFindsNamesWithoutRegardToCase) {
    ASSERT_TRUE(Write("\\", "@", "e"));
    ASSERT_TRUE(Write("\\a", "Key", "v1"));
    ASSERT_TRUE(Write("\\b", "zeta", "1"));
    ASSERT_TRUE(Write("\\b", "alpha", "2"));
    ASSERT_TRUE(Write("\\A", "KEY", "v2"));  // the existing key, in its place and spelling

    EXPECT_EQ(Sections(), (Strings{"\\", "\\a", "\\b"}));
    EXPECT_EQ(Keys("\\B"), (Strings{"zeta", "alpha"}));
    EXPECT_EQ(Value("\\a", "key"), "v2");
    EXPECT_EQ(Content(), "[\\]\r\n@=e\r\n[\\a]\r\nKey=v2\r\n[\\b]\r\nzeta=1\r\nalpha=2\r\n");
}

TEST_F(ProfileFile, ValuesComeBackAsThePlatformKeepsThem) {
    struct Case {
        const char* written;
        const char* read;
    };
    const Case cases[] = {
        {"=y=z", "=y=z"},                     // only the first "=" ends the name
        {"   blanks \t ", "blanks"},          // blanks at both ends are lost
        {"\"q v\"", "q v"},                   // enclosing quotes are taken off
        {"'s'", "s"},
        {"\"half", "\"half"},
        {"s\"marked\"", "s\"marked\""},       // a marker in front protects quotes
        {"s  lead", "s  lead"},               // ... and leading blanks
        {"", ""},
        {"\xe9\x81\x9d\xff", "\xe9\x81\x9d\xff"},  // bytes above 127 unchanged
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(Write("\\", "v", c.written)) << c.written;
        EXPECT_EQ(Value("\\", "v"), c.read) << c.written;
    }
    ASSERT_TRUE(Write("\\", "  spaced  ", "sp"));
    EXPECT_EQ(Keys("\\"), (Strings{"v", "spaced"}));
    EXPECT_EQ(Value("\\", "spaced"), "sp");
}

TEST_F(ProfileFile, ReadsAForeignFileAndKeepsWhatItDoesNotUnderstand) {
    SetContent(
        "  [ \\x ]  \r\n ; comment line\r\n# hash line\r\nbare\r\n  spaced key  =  val  \r\n"
        "k=first\r\nK=second\r\n[\\x]\r\nlater=1\r\n[nobackslash]\na=b\n[\\y]\nunix=1\n[\\z");

    EXPECT_EQ(Sections(), (Strings{"\\x", "\\x", "nobackslash", "\\y"}));
    EXPECT_EQ(Keys("\\x"), (Strings{"spaced key", "k", "K"}));
    EXPECT_EQ(Value("\\x", "k"), "first");          // the first key of the name
    EXPECT_EQ(Value("\\x", "later"), "");           // in the second section of the name
    EXPECT_EQ(Value("\\x", "bare"), "");
    EXPECT_EQ(Value("\\y", "unix"), "1");

    ASSERT_TRUE(Write("\\x", "new", "n"));
    EXPECT_EQ(Content(),
              "[\\x]\r\n; comment line\r\n# hash line\r\nbare\r\nspaced key=val\r\nk=first\r\n"
              "K=second\r\nnew=n\r\n[\\x]\r\nlater=1\r\n[nobackslash]\r\na=b\r\n[\\y]\r\nunix=1\r\n"
              "[\\z\r\n");
}

// How the platform reads lines of another program's file: what ends a
// line, which bytes are blanks, comments among the keys, zero bytes, and a
// file in UTF-8 marked by its byte order mark (read as ANSI text, here code
// page 1252, what it cannot hold as '?').
TEST_F(ProfileFile, ReadsLinesAsThePlatformDoes) {
    struct Case {
        std::string content;
        Strings sections;
        Strings keys;    // of the section "s"
        std::string k;   // the key "k" of "s"
    };
    using namespace std::string_literals;
    const Case cases[] = {
        {"[s]\r\n;x=1\r\nk=2\r\n ;y=3\r\n;=4\r\n#h=5\r\n[;c]\r\n", {"s", ";c"}, {"k", "#h"}, "2"},
        {"[\x0bs\x0c]\r\n\x0bk\x0c=\x1a v\x0b\x0c\x1a\r\n\x1aj=\x0c\x1b\xa0\x0c\r\n", {"s"}, {"k", "j"}, "v"},
        {"[s]\rk=v\rj=w\r[t]\rx=1\r", {"s", "t"}, {"k", "j"}, "v"},
        {"[s]\r\nk=a \0b\r\nj\0i=c\r\n[t\0u]\r\n\0\r\n"s, {"s", "t"}, {"k", "j"}, "a "},
        {"\xEF\xBB\xBF[s]\r\nk=\xE2\x82\xAC\xC3\xA9\xE4\xB8\x80\r\n\xC3\xA9=1\r\n", {"s"}, {"k", "\xE9"}, "\x80\xE9?"},
        {"\xEF\xBB\xBF[s]\r\nk=a\xFF" "b\r\n", {"s"}, {"k"}, "a?b"},
        {"\xEF\xBB[s]\r\nk=v\r\n", {}, {}, ""},
        {"\r\n\xEF\xBB\xBF[s]\r\nk=v\r\n", {}, {}, ""},
    };
    for (const Case& c : cases) {
        SetContent(c.content);
        EXPECT_EQ(Sections(), c.sections) << c.content;
        EXPECT_EQ(Keys("s"), c.keys) << c.content;
        EXPECT_EQ(Value("s", "k"), c.k) << c.content;
    }
    SetContent(cases[0].content);
    EXPECT_EQ(Value("s", ";x"), "1");  // not listed, but there
    SetContent(cases[1].content);
    EXPECT_EQ(Value("s", "j"), "\x1b\xa0");
    SetContent(cases[4].content);
    EXPECT_EQ(Value("s", "\xE9"), "1");
}

// How the platform writes: new names and texts lose their leading blanks
// only, what it read it writes back as it understood it, and a file in UTF-8
// stays so.
TEST_F(ProfileFile, WritesAsThePlatformDoes) {
    struct Case {
        std::string content;
        const char* section;
        const char* key;
        const char* text;  // null: the key is removed
        std::string after;
    };
    using namespace std::string_literals;
    const Case cases[] = {
        {"", "  s  ", "  k  ", "  v  ", "[s  ]\r\nk  =v  \r\n"},
        {"", "\x0bs\x1a", "\x0ck\x0c", "\x1av\x0b", "[s\x1a]\r\nk\x0c=v\x0b\r\n"},
        {"[s]\r\nk=old\r\n", "s", "K  ", "  new  ", "[s]\r\nk=new  \r\n"},
        {"[s]\r\n", "s", ";k", "1", "[s]\r\n;k=1\r\n"},
        {"[s]\rk=v\r", "s", "n", "1", "[s]\r\nk=v\r\nn=1\r\n"},
        {"[s]\r\nk=a\0b\r\n[t\0u]\r\n\0"s, "s", "n", "1", "[s]\r\nk=a\r\nn=1\r\n[t]\r\n\r\n"},
        {"\xEF\xBB\xBF[s]\r\nk=\xC3\xA9\r\n", "s", "n", "\x80", "\xEF\xBB\xBF[s]\r\nk=\xC3\xA9\r\nn=\xE2\x82\xAC\r\n"},
        {"\xEF\xBB\xBF", "s", "n", "1", "\xEF\xBB\xBF[s]\r\nn=1\r\n"},
        {"\xEF\xBB\xBF[s]\r\nk=v\r\n", "s", "k", nullptr, "\xEF\xBB\xBF[s]\r\n"},
    };
    for (const Case& c : cases) {
        SetContent(c.content);
        const bool done = c.text != nullptr ? Write(c.section, c.key, c.text)
                                            : sys::DeleteProfileKey(c.section, c.key, file.c_str());
        EXPECT_TRUE(done) << c.after;
        EXPECT_EQ(Content(), c.after);
    }
    EXPECT_EQ(Value("s", "k"), "");
    SetContent(cases[1].after);
    EXPECT_EQ(Value("s", "k"), "v");
}

// A name without a directory part lies in the Windows directory, never in
// the current one; natively there is no Windows directory, and such a name
// names no file.
TEST_F(ProfileFile, ABareNameIsNotTheFileInTheCurrentDirectory) {
    const char* bare = "kt_profile_bare.ini";
    const WideString here = directory / KTW("kt_profile_bare.ini");
    WriteContent(here, "[s]\r\nk=here\r\n");
    ASSERT_TRUE(sys::SetReadOnly(here.c_str(), true));
    const InDirectory inside(directory.Path());
    const std::string used = sys::ProfileFilePath(bare);
    char text[16];
    EXPECT_EQ(sys::ReadProfileString("s", "k", text, sizeof text, bare), 0u);
    EXPECT_EQ(sys::WriteProfileString("s", "k", "there", bare), !used.empty());
    if (!used.empty()) {
        EXPECT_EQ(sys::ReadProfileString("s", "k", text, sizeof text, bare), 5u);
        EXPECT_TRUE(sys::RemoveFile(WideString(used.begin(), used.end()).c_str()));
    }
    EXPECT_EQ(ContentOf(here), "[s]\r\nk=here\r\n");
    EXPECT_TRUE(sys::SetReadOnly(here.c_str(), false));
}

TEST_F(ProfileFile, RemovesAKeyAndTheFirstSectionOfAName) {
    SetContent("[\\a]\r\nk=1\r\n[\\b]\r\nj=2\r\n[\\A]\r\nk=3\r\nm=4\r\n");

    ASSERT_TRUE(sys::DeleteProfileSection("\\a", file.c_str()));
    EXPECT_EQ(Value("\\a", "k"), "3");  // the second section of the name is found now
    ASSERT_TRUE(sys::DeleteProfileKey("\\a", "K", file.c_str()));
    ASSERT_TRUE(sys::DeleteProfileKey("\\a", "m", file.c_str()));
    ASSERT_TRUE(sys::DeleteProfileKey("\\a", "nosuch", file.c_str()));
    EXPECT_TRUE(Keys("\\a").empty());
    EXPECT_EQ(Sections(), (Strings{"\\b", "\\A"}));  // listed without keys

    ASSERT_TRUE(sys::DeleteProfileSection("\\a", file.c_str()));
    ASSERT_TRUE(sys::DeleteProfileSection("\\b", file.c_str()));
    EXPECT_EQ(Content(), "");
}

TEST_F(ProfileFile, ShortBuffersAreCutInBounds) {
    ASSERT_TRUE(Write("\\a", "k1", "v1"));
    ASSERT_TRUE(Write("\\a", "k2", "v2"));
    struct Case {
        DWORD size;
        DWORD result;
        std::string bytes;  // the buffer up to and with buffer[result]
    };
    const Case lists[] = {
        {1, 0, std::string("\0", 1)},        {2, 0, std::string("\0", 1)},
        {3, 1, std::string("k\0", 2)},       {4, 2, std::string("k1\0", 3)},
        {5, 3, std::string("k1\0\0", 4)},    {6, 4, std::string("k1\0k\0", 5)},
        {7, 5, std::string("k1\0k2\0", 6)},  {8, 6, std::string("k1\0k2\0\0", 7)},
    };
    for (const Case& c : lists) {
        buffer.assign(c.size + 1, kUntouched);
        const DWORD result = sys::ReadProfileKeyNames("\\a", buffer.data(), c.size, file.c_str());
        EXPECT_EQ(result, c.result) << c.size;
        EXPECT_EQ(buffer.substr(0, result + 1), c.bytes) << c.size;
        EXPECT_EQ(buffer[c.size], kUntouched) << c.size;
    }
    buffer.assign(4, kUntouched);
    EXPECT_EQ(sys::ReadProfileKeyNames("\\a", buffer.data(), 0, file.c_str()), 0u);
    EXPECT_EQ(sys::ReadProfileString("\\a", "k1", buffer.data(), 0, file.c_str()), 0u);
    EXPECT_EQ(buffer, std::string(4, kUntouched));
    EXPECT_EQ(Value("\\a", "k1", 1), "");
    EXPECT_EQ(Value("\\a", "k1", 2), "v");
}

// Texts of any length are written, and read back cut to the buffer. Names
// longer than the platform's functions take are refused: Wine's would make
// other names of them.
TEST_F(ProfileFile, LongValuesAndListingsStayInBounds) {
    for (const size_t length : {size_t{32767}, size_t{kListing - 1}, size_t{70000}}) {
        const std::string text(length, 'L');
        ASSERT_TRUE(Write("\\", "v", text.c_str())) << length;
        EXPECT_EQ(Value("\\", "v"), text.substr(0, kListing - 1)) << length;
    }
    const std::string longest(sys::kLongestProfileName, 'N');
    ASSERT_TRUE(Write("\\", longest.c_str(), "x"));
    EXPECT_EQ(Value("\\", longest.c_str()), "x");
    const std::string tooLong = longest + "N";
    EXPECT_FALSE(Write("\\", tooLong.c_str(), "y"));
    EXPECT_FALSE(Write(tooLong.c_str(), "k", "y"));
    EXPECT_FALSE(sys::DeleteProfileKey("\\", tooLong.c_str(), file.c_str()));
    EXPECT_EQ(Value("\\", tooLong.c_str()), "");
    EXPECT_EQ(Keys("\\"), (Strings{"v", longest}));

    // Another program's file may hold more than the buffer.
    std::string text = "[\\long]\r\nv=" + std::string(70000, 'M') + "\r\n[\\many]\r\n";
    for (int i = 0; i < 3000; ++i)
        text += "[\\section" + std::to_string(10000 + i) + "_padded_to_a_good_length]\r\nk=" +
                std::to_string(i) + "\r\n";
    SetContent(text);
    EXPECT_EQ(Value("\\long", "v"), std::string(kListing - 1, 'M'));
    buffer.assign(kListing, kUntouched);
    EXPECT_EQ(sys::ReadProfileSectionNames(buffer.data(), kListing, file.c_str()), kListing - 2);
    EXPECT_EQ(buffer[kListing - 2], 0);
    EXPECT_EQ(Names(buffer.substr(0, 20)).front(), "\\long");
}

TEST_F(ProfileFile, AReadOnlyFileIsNotWritten) {
    ASSERT_TRUE(Write("\\", "k", "old"));
    ASSERT_TRUE(sys::SetReadOnly(wideFile.c_str(), true));
    EXPECT_FALSE(Write("\\", "k", "new"));
    EXPECT_FALSE(sys::DeleteProfileKey("\\", "k", file.c_str()));
    EXPECT_FALSE(sys::DeleteProfileSection("\\", file.c_str()));
    EXPECT_EQ(Value("\\", "k"), "old");
    EXPECT_TRUE(sys::SetReadOnly(wideFile.c_str(), false));
}

}  // namespace
}  // namespace kt::test
