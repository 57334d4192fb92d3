// The text of `wld` files: which lines give strings, how strings pair up,
// where the dictionary ends, and the escapes.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "files/MemFile.h"
#include "tests/support/StringInspection.h"
#include "translation/WldReader.h"

namespace kt::test {
namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

struct ReadResult {
    Pairs pairs;
    unsigned languageId = 0;
};

ReadResult Read(const std::string& content) {
    IXFile* file = kt_NewMemFile(1);  // grows by single bytes: no zeros behind the text
    file->Write(content.data(), static_cast<DWORD>(content.size()));
    file->Seek(0, 0);
    ReadResult result;
    WldReader reader(file);
    CXString key;
    CXString value;
    while (reader.Next(key, value))
        result.pairs.emplace_back(static_cast<const char*>(key), static_cast<const char*>(value));
    result.languageId = reader.LanguageId();
    file->Release();
    return result;
}

struct TextCase {
    const char* what;
    std::string content;
    Pairs pairs;
};

class WldText : public ::testing::TestWithParam<TextCase> {};

TEST_P(WldText, GivesThePairs) { EXPECT_EQ(Read(GetParam().content).pairs, GetParam().pairs); }

std::string Quoted(size_t size) { return "\"" + std::string(size - 2, 'x') + "\""; }

INSTANTIATE_TEST_SUITE_P(
    Lines, WldText,
    ::testing::Values(
        TextCase{
            "CommentBetweenKeyAndValue", "\"key\"\n; a comment\n\"value\"\n", {{"key", "value"}}},
        TextCase{
            "TextOutsideQuotesBetween", "\"key\"\nnot a string\n\"value\"\n", {{"key", "value"}}},
        TextCase{"CommentAfterBlanks", "\"a\"\n  ;\"b\"\n\"c\"\n", {{"a", "c"}}},
        TextCase{"CrLfWithBlankLines",
                 "\"a\"\r\n\r\n\"b\"\r\n\r\n\"c\"\r\n\"d\"\r\n",
                 {{"a", "b"}, {"c", "d"}}},
        TextCase{"EmptyLineWhereAKeyIsDueEnds", "\"a\"\n\"b\"\n\n\"c\"\n\"d\"\n", {{"a", "b"}}},
        TextCase{"EmptyLineWhereAValueIsDue", "\"a\"\n\n\"c\"\n\"d\"\n", {{"a", "a"}, {"c", "d"}}},
        TextCase{"KeyAtTheEnd", "\"a\"\n\"b\"\n\"c\"\n", {{"a", "b"}, {"c", "c"}}},
        TextCase{"LastLineWithoutLineFeed", "\"a\"\n\"b\"", {{"a", "b"}}},
        TextCase{"BlanksAroundTheQuotes", "   \"abc\"   \n\t\"v\" \r\n", {{"abc", "v"}}},
        TextCase{"LastCharacterIsAlwaysRemoved", "\"abc\n\"v\"\n", {{"ab", "v"}}},
        TextCase{"SingleQuoteIsIgnored", "\"\n\"k\"\n\"v\"\n", {{"k", "v"}}},
        TextCase{"InnerQuotesNeedNoEscape", "\"say \"hi\"\"\n\"v\"\n", {{"say \"hi\"", "v"}}},
        TextCase{"EmptyString", "\"k\"\n\"\"\n", {{"k", ""}}},
        TextCase{"Escapes",
                 "\"C:\\\\new\"\n\"C:\\temp C:\\dir a\\\\\\\\b\"\n",
                 {{"C:\new", "C:\temp C:\\dir a\\b"}}},
        TextCase{"CarriageReturnAndBackslashAtTheEnd", "\"a\\r\\\"\n\"v\"\n", {{"a\r", "v"}}},
        // A line of more than 8192 bytes goes on as a line of its own, its
        // line feed too.
        TextCase{"LineOf8191Bytes",
                 "\"k\"\n" + Quoted(8191) + "\n\"k2\"\n\"v2\"\n",
                 {{"k", std::string(8189, 'x')}, {"k2", "v2"}}},
        TextCase{"LineOf8192BytesLeavesAnEmptyLine",
                 "\"k\"\n" + Quoted(8192) + "\n\"k2\"\n\"v2\"\n",
                 {{"k", std::string(8190, 'x')}}},
        TextCase{"LineOf8193BytesIsCut",
                 "\"k\"\n" + Quoted(8193) + "\n\"k2\"\n\"v2\"\n",
                 {{"k", std::string(8190, 'x')}, {"k2", "v2"}}}),
    [](const ::testing::TestParamInfo<TextCase>& param) { return std::string(param.param.what); });

TEST(WldLanguage, TheLastLanguageKeyCountsAsItStandsBeforeEscapes) {
    EXPECT_EQ(Read("\"KT_WLD_LANG_ID\"\n\"1049\"\n\"KT_WLD_LANG_ID\"\n\"1041\"\n").languageId,
              1041u);
    EXPECT_EQ(Read("\"KT_WLD_LANG_ID\"\n\"1049\"\n\"KT_WLD_LANG_ID\\\\\"\n\"1041\"\n").languageId,
              1049u);
    EXPECT_EQ(Read("\"a\"\n\"b\"\n").languageId, 0u);
}

// Shift-JIS: 0x95 0x5C is one character whose trail byte has the code of a
// backslash; 0x81 0x40 is the ideographic space.
TEST(WldDoubleByte, EscapesAndBlanksAreCharactersOfTheCurrentCodePage) {
    const std::string content = "\x81\x40\"\x95\x5Cn\"\x81\x40\n\"\x95\x5C\\n\x95\x5C\"\n";
    {
        ScopedCodePage shiftJis(932);
        ASSERT_TRUE(shiftJis.ok);
        EXPECT_EQ(Read(content).pairs, (Pairs{{"\x95\x5Cn", "\x95\x5C\n\x95\x5C"}}));
        EXPECT_EQ(Read("\"ab\x95\x5C\n\"v\"\n").pairs, (Pairs{{"ab", "v"}}));
    }
    EXPECT_EQ(Read("\"\x95\x5Cn\"\n\"v\"\n").pairs, (Pairs{{"\x95\n", "v"}}))
        << "in a single-byte code page the same bytes hold an escape";
}

}  // namespace
}  // namespace kt::test
