// File-name operations, the same in both widths.
#include <gtest/gtest.h>

#include "tests/support/StringInspection.h"
#include "tests/support/StringWidths.h"

namespace kt::test {
namespace {

template <class W>
using Paths = StringTest<W>;
TYPED_TEST_SUITE(Paths, BothWidths, WidthName);

TYPED_TEST(Paths, SplitIntoDirectoryNameAndExtension) {
    struct Case {
        const char *text, *path, *name, *bareName, *ext;
        int pathSize;
    } cases[] = {
        {"C:\\a\\b.txt", "C:\\a", "b.txt", "b", "txt", 4},
        {"C:\\b.txt", "C:", "b.txt", "b", "txt", 2},
        {"C:b.txt", "C:", "b.txt", "b", "txt", 2},
        {"\\b.txt", "", "b.txt", "b", "txt", 0},
        {"b.txt", "", "b.txt", "b", "txt", 0},
        {"a.d/b", "a.d", "b", "b", "<null>", 3},
        {"C:\\a\\", "C:\\a", "", "", "<null>", 4},
    };
    for (const Case& c : cases) {
        const auto s = this->Make(c.text);
        typename TypeParam::Unit out[32] = {'u', 'n', 't', 'o', 'u', 'c', 'h', 'e', 'd', 0};
        const int pathSize = s.GetFilePath(out);
        EXPECT_EQ(pathSize, c.pathSize) << c.text;
        if (pathSize != 0) {
            EXPECT_EQ(this->Of(out), this->T(c.path)) << c.text;
        }
        EXPECT_EQ(this->Of(s.FilePath()), this->T(c.path)) << c.text;
        EXPECT_EQ(this->Of(s.GetFileName()), this->T(c.name)) << c.text;
        EXPECT_EQ(this->Of(s.FileName()), this->T(c.name)) << c.text;
        EXPECT_EQ(s.GetFileName(out), static_cast<int>(this->T(c.bareName).size())) << c.text;
        EXPECT_EQ(this->Of(out), this->T(c.bareName)) << c.text;
        EXPECT_EQ(this->Of(s.GetFileExt()), this->T(c.ext)) << c.text;
        const auto ext = c.ext[0] == '<' ? this->T("") : this->T(c.ext);
        EXPECT_EQ(s.GetFileExt(out), static_cast<int>(ext.size())) << c.text;
        EXPECT_EQ(this->Of(out), ext) << c.text;
    }
    typename TypeParam::Unit untouched[4] = {'x', 0};
    EXPECT_EQ(this->Make("b.txt").GetFilePath(untouched), 0);
    EXPECT_EQ(this->Of(untouched), this->T("x"));
}

TYPED_TEST(Paths, ChangeFileExtReplacesOrAppends) {
    struct Case {
        const char *text, *ext, *expected;
    } cases[] = {{"a.d/b", "x", "a.d/b.x"},
                 {"a.txt", ".pdf", "a.pdf"},
                 {"a.txt", "pdf", "a.pdf"},
                 {"a.", "x", "a.x"},
                 {"dir\\a.tar.gz", "zip", "dir\\a.tar.zip"},
                 {"", "x", ".x"}};
    for (const Case& c : cases) {
        auto s = this->Make(c.text);
        s.ChangeFileExt(this->T(c.ext).c_str());
        EXPECT_EQ(this->Of(s), this->T(c.expected)) << c.text << " " << c.ext;
    }
}

TYPED_TEST(Paths, DelimitersAreAddedOnlyWhenMissing) {
    EXPECT_EQ(this->Of(this->Make("a").AddDirDelim()), this->T("a\\"));
    EXPECT_EQ(this->Of(this->Make("a/").AddDirDelim()), this->T("a/"));
    EXPECT_EQ(this->Of(this->Make("a\\").AddDirDelim()), this->T("a\\"));
    EXPECT_EQ(this->Of(this->Make("").AddDirDelim()), this->T("\\"));
    EXPECT_EQ(this->Of(this->Make("a").AddFileExtDelim()), this->T("a."));
    EXPECT_EQ(this->Of(this->Make("a.").AddFileExtDelim()), this->T("a."));
    EXPECT_EQ(this->Of(this->Make("").AddFileExtDelim()), this->T("."));
}

TYPED_TEST(Paths, ReducePathStringCutsWholeDirectoriesFromTheMiddle) {
    struct Case {
        const char* text;
        int maxLen;
        const char* expected;
        int result;
    } cases[] = {
        {"C:\\aaa\\bbb\\ccc\\ddd\\file.txt", 27, "C:\\aaa\\bbb\\ccc\\ddd\\file.txt", 1},
        {"C:\\aaa\\bbb\\ccc\\ddd\\file.txt", 24, "C:\\aaa\\...\\ddd\\file.txt", 1},
        {"C:\\aaa\\bbb\\ccc\\ddd\\file.txt", 20, "C:\\aaa\\...\\file.txt", 1},
        {"C:\\aaa\\bbb\\ccc\\ddd\\file.txt", 5, "C:\\aaa\\...\\file.txt", 1},
        {"C:\\aaa\\file.txt", 10, "C:\\...\\file.txt", 1},
        {"C:\\file.txt", 5, "C:\\file.txt", 1},
        {"\\\\srv\\share\\a\\b\\c\\file.txt", 18, "\\\\srv\\share\\...\\file.txt", 1},
        {"\\\\srv", 3, "\\\\srv", 0},
        {"abc\\def\\ghi.txt", 5, "abc\\def\\ghi.txt", 0},
        {"C:/aaa/bbb/file.txt", 5, "C:/aaa/bbb/file.txt", 0},
    };
    for (const Case& c : cases) {
        auto s = this->Make(c.text);
        EXPECT_EQ(s.ReducePathString(c.maxLen), c.result) << c.text << " " << c.maxLen;
        EXPECT_EQ(this->Of(s), this->T(c.expected)) << c.text << " " << c.maxLen;
    }
}

TYPED_TEST(Paths, APathThatFitsKeepsSharingItsBuffer) {
    auto original = this->Make("C:\\a\\b.txt");
    auto copy = original;
    EXPECT_EQ(copy.ReducePathString(50), 1);
    EXPECT_EQ(HeaderOf(original).refs, 2);
}

}  // namespace
}  // namespace kt::test
