// The text form in files: includes and their two base directories, physical
// lines at and beyond the limit, bytes that are not text, and a write that
// fails leaving the old file whole.
#include <string>

#include "kticore/core/Exception.h"
#include "kticore/params/ParamTools.h"
#include "tests/params/ParamTestSupport.h"
#include "tests/support/ScratchDirectory.h"

namespace kt::test {
namespace {

constexpr size_t kPhysicalLine = 65536;

class TextFiles : public ::testing::Test {
protected:
    Ref<IParam> ReadFile(const WideString& name) {
        auto tree = NewTree();
        EXPECT_EQ(Param_IniFile2Param(name.c_str(), tree.get()), 1);
        return tree;
    }
    Ref<IParam> ReadContent(const std::string& content) {
        WriteContent(directory / KTW("top.ini"), content);
        return ReadFile(directory / KTW("top.ini"));
    }
    int IntAt(IParam* tree, const char* path) { return static_cast<int>(ValueAt(tree, path)); }

    ScratchDirectory directory;
};

// An included file adds to the section in hand, and the section in hand at
// its end stays current in the file that included it.
TEST_F(TextFiles, AnIncludeReadsOnInTheSectionInHand) {
    WriteContent(directory / KTW("inc.ini"), "x=i1\n[\\b]\n");
    auto tree = ReadContent("[\\a]\n#include ./inc.ini\nafter=i2\n#  INCLUDE \"./inc.ini\"\n");
    EXPECT_EQ(IntAt(tree.get(), "a\\x"), 1);
    EXPECT_EQ(IntAt(tree.get(), "b\\after"), 2);
    EXPECT_EQ(IntAt(tree.get(), "b\\x"), 1);
}

// A dotted path is relative to the file being read; another one is tried as
// it stands and then in the top file's directory.
TEST_F(TextFiles, IncludesFindTheirFilesFromBothBaseDirectories) {
    Fio_CreateDirectory((directory / KTW("sub")).c_str());
    WriteContent(directory / KTW("sub/inc.ini"), "from=i1\n#include ./beside.ini\n#include top2.ini\n");
    WriteContent(directory / KTW("sub/beside.ini"), "beside=i2\n");
    WriteContent(directory / KTW("top2.ini"), "base=i3\n");
    auto tree = ReadContent("[\\]\n#include sub/inc.ini\n#include missing.ini\nlast=i4\n");
    EXPECT_EQ(ValueNames(tree.get()), (Names{"from", "beside", "base", "last"}));
}

// At most 32 inputs are open at once, the top file among them, and one
// reading opens at most 1024 includes: without the second limit, a file that
// includes itself twice would be read 2^32 times before the first stopped it.
TEST_F(TextFiles, IncludesStopAtTheDepthAndCountLimits) {
    Names chain;
    for (int i = 1; i <= 40; ++i) {
        const std::string leaf = "f" + std::to_string(i) + ".ini";
        WriteContent(directory / WideString(leaf.begin(), leaf.end()),
                     "v" + std::to_string(i) + "\n#include ./f" + std::to_string(i + 1) + ".ini\n");
    }
    auto deep = ReadContent("[\\]\nv0\n#include ./f1.ini\n");
    for (int i = 0; i < 32; ++i)
        chain.push_back("v" + std::to_string(i));
    EXPECT_EQ(ValueNames(deep.get()), chain);

    WriteContent(directory / KTW("one.ini"), "one\n");
    WriteContent(directory / KTW("last.ini"), "last\n");
    for (const int before : {1023, 1024}) {
        std::string text = "[\\]\n";
        for (int i = 0; i < before; ++i)
            text += "#include ./one.ini\n";
        auto tree = ReadContent(text + "#include ./last.ini\n");
        EXPECT_EQ(ValueNames(tree.get()), before < 1024 ? (Names{"one", "last"}) : Names{"one"});
    }

    auto itself = ReadContent("[\\]\n#include ./top.ini\n#include ./top.ini\ncount\n");
    EXPECT_EQ(ValueNames(itself.get()), Names{"count"});
}

// A physical line of exactly the limit leaves its line feed for the next
// read, which finds an empty line: the end of the input. One byte more and
// the line arrives in two pieces, each a line.
TEST_F(TextFiles, ALineOfTheLimitEndsTheInputAndALongerOneArrivesInPieces) {
    const std::string line = "v=s" + std::string(kPhysicalLine - 3, 'a');
    auto atLimit = ReadContent("[\\]\n" + line + "\nw=i1\n");
    EXPECT_EQ(std::string(static_cast<char*>(ValueAt(atLimit.get(), "v"))), line.substr(3));
    EXPECT_EQ(ValueAt(atLimit.get(), "w").vt, kMissing);
    auto longer = ReadContent("[\\]\n" + line + "|u=i5\nw=i1\n");
    EXPECT_EQ(std::string(static_cast<char*>(ValueAt(longer.get(), "v"))), line.substr(3));
    EXPECT_EQ(IntAt(longer.get(), "u"), 5);
    EXPECT_EQ(IntAt(longer.get(), "w"), 1);
}

// Zero bytes are dropped from the lines, so 16-bit text reads as its
// narrow twin, and other bytes read as whatever lines they make.
TEST_F(TextFiles, BytesThatAreNotTextReadWithoutHarm) {
    const std::string narrow = "[\\a]\r\nv=i5\r\n";
    std::string wide;
    for (const char c : narrow)
        wide += std::string(1, c) + '\0';
    auto tree = ReadContent(wide);
    EXPECT_EQ(IntAt(tree.get(), "a\\v"), 5);

    // One physical line of any bytes but a line feed, in two pieces: the
    // reader comes out of it in step with the lines behind.
    std::string garbage;
    for (unsigned i = 0; i < 70000; ++i) {
        const char byte = static_cast<char>((i * 2654435761u) >> 24);
        garbage += byte == '\n' ? ' ' : byte;
    }
    auto other = ReadContent("[\\]\n" + garbage + "\r\n[\\k]\r\nknown=i7\r\n");
    EXPECT_EQ(IntAt(other.get(), "k\\known"), 7);
}

TEST_F(TextFiles, AFailedWriteLeavesTheOldFileWhole) {
    const WideString name = directory / KTW("tree.ini");
    auto tree = NewTree();
    Set(tree.get(), "v", CKTVariant(1));
    Param_Param2IniFile(tree.get(), name.c_str());
    const std::string before = ContentOf(name);

    // "\t| ", the name, "=" and the marked text come back as a physical line
    // of their own, with its carriage return below the reader's limit.
    Set(tree.get(), "w", CKTVariant(("s" + std::string(65527, 'b')).c_str()));
    Param_Param2IniFile(tree.get(), name.c_str());
    const std::string fits = ContentOf(name);
    EXPECT_NE(fits, before);
    auto fitting = ReadFile(name);
    EXPECT_EQ(Param_Cmp(fitting.get(), tree.get()), 1);
    EXPECT_EQ(Param_Cmp(tree.get(), fitting.get()), 1);

    Set(tree.get(), "w", CKTVariant(std::string(65529, 'b').c_str()));
    EXPECT_EQ(FailureOf([&] { Param_Param2IniFile(tree.get(), name.c_str()); }),
              static_cast<DWORD>(XE_BAD_ARGUMENT))
        << "an entry beyond its buffer was written";
    EXPECT_EQ(ContentOf(name), fits);
    EXPECT_EQ(Param_Cmp(ReadFile(name).get(), fitting.get()), 1);
    EXPECT_EQ(directory.Entries().size(), 1u);  // no temporary file left behind
}

// Every line the writer makes comes back whole: values that would take their
// header's line past the reader's limit go on lines of their own, and a
// header that cannot come back is refused.
TEST_F(TextFiles, EveryLineTheWriterMakesComesBackWhole) {
    const WideString name = directory / KTW("tree.ini");
    auto tree = NewTree();
    for (const char* value : {"a", "b", "c"})
        Set(tree.get(), value, CKTVariant(std::string(30000, *value).c_str()));
    const std::string longest(65530, 'h');  // with "[\\", "]\t" and "\r": the longest line
    Ref<IParam>(tree->CreateSection(longest.c_str()));
    Set(tree.get(), "z\\after", CKTVariant(1));
    Param_Param2IniFile(tree.get(), name.c_str());
    auto back = ReadFile(name);
    EXPECT_EQ(Param_Cmp(tree.get(), back.get()), 1);
    EXPECT_EQ(Param_Cmp(back.get(), tree.get()), 1);

    Ref<IParam>(tree->CreateSection((longest + "h").c_str()));
    EXPECT_EQ(FailureOf([&] { Param_Param2IniFile(tree.get(), name.c_str()); }),
              static_cast<DWORD>(XE_BAD_ARGUMENT))
        << "a header beyond the line limit was written";
}

TEST_F(TextFiles, AMissingFileThrowsTheFileLayersFailure) {
    auto tree = NewTree();
    const WideString name = directory / KTW("missing.ini");
    const auto failure = FileFailureOf([&] { Param_IniFile2Param(name.c_str(), tree.get()); });
    EXPECT_EQ(failure.code, static_cast<DWORD>(XE_FILE_NOT_FOUND));
}

}  // namespace
}  // namespace kt::test
