// The program's answers to its command lines, and pseudo-translation.
#include <map>

#include "tests/kttool/ToolTestSupport.h"
#include "tools/kttool/Pseudo.h"
#include "tools/kttool/TextChecks.h"
#include "tools/kttool/WldEntries.h"
#include "tools/kttool/WldText.h"

namespace kttool::test {
namespace {

struct Answer {
    Arguments args;
    int status;
    const char* says;  // in what the program writes
};

TEST(Tool, EveryCommandLineIsAnsweredWithAStatusAndAMessage) {
    Scratch scratch;
    const std::string small = scratch / "small.wld";
    const std::string garbage = scratch / "garbage.wld";
    const std::string prose = scratch / "prose.wld";
    std::ofstream(small, std::ios::binary) << "\"Open\"\r\n\"Ouvrir\"\r\n";
    // Binary, with lines that happen to be quoted.
    const char kGarbage[] = "MZ\x90\0\n\"\xff\x01\"\n\"\0\x02\"\n";
    std::ofstream(garbage, std::ios::binary) << std::string(kGarbage, sizeof kGarbage - 1);
    std::ofstream(prose, std::ios::binary) << "Dear translator,\nno quotes here.\n";
    const Answer answers[] = {
        {{}, kFailure, "usage: kttool COMMAND"},
        {{"--help"}, kSuccess, "usage: kttool COMMAND"},
        {{"translate"}, kFailure, "unknown command"},
        {{"extract", "--help"}, kSuccess, "usage: kttool extract"},
        {{"check", "--help"}, kSuccess, "usage: kttool check"},
        {{"pseudo", "--help"}, kSuccess, "usage: kttool pseudo"},
        {{"extract", kTextsModule}, kFailure, "needs at least one MODULE and -o"},
        {{"extract", kTextsModule, "-o"}, kFailure, "-o needs a value"},
        {{"extract", kTextsModule, "-o", scratch / "a.wld", "--lang", "1x"},
         kFailure,
         "decimal number"},
        {{"extract", kTextsModule, "-o", scratch / "a.wld", "--lang", "4242"},
         kFailure,
         "not a locale"},
        {{"extract", scratch / "none.dll", "-o", scratch / "a.wld"}, kFailure, "cannot be opened"},
        {{"check", scratch / "none.wld"}, kFailure, "cannot be opened"},
        {{"pseudo", scratch / "none.wld", "-o", scratch / "b.wld"}, kFailure, "cannot be opened"},
        {{"check", garbage}, kFailure, "not a dictionary"},
        {{"check", prose, kTextsModule}, kFailure, "not a dictionary"},
        {{"pseudo", garbage, "-o", scratch / "b.wld"}, kFailure, "not a dictionary"},
        {{"pseudo", small, "-o", scratch / "b.wld", "--lang", "1049"},
         kSuccess,
         "no accented Latin letters"},
    };
    for (const Answer& answer : answers) {
        const ToolRun run = RunKtTool(answer.args);
        SCOPED_TRACE(answer.says);
        EXPECT_EQ(run.status, answer.status);
        EXPECT_NE((run.out + run.err).find(answer.says), std::string::npos) << run.out << run.err;
    }
}

TEST(Pseudo, ValuesGrowAndKeepWhatTheProgramReads) {
    const char* const kTexts[] = {"&Open...\tCtrl+O",       "Saved %d of %-5.2f%% files",
                                  "Replace %1 with %2!s!?", "Version {0}",
                                  "Line one\nline two",     "Size: %I64u bytes"};
    for (const unsigned codePage : {1252u, 1251u}) {
        for (const char* narrow : kTexts) {
            const WideText text(narrow, narrow + std::char_traits<char>::length(narrow));
            const WideText pseudo = PseudoTranslate(text, codePage);
            SCOPED_TRACE(Printable(pseudo));
            const Placeholders before = PlaceholdersOf(text);
            const Placeholders after = PlaceholdersOf(pseudo);
            EXPECT_EQ(after.ordered, before.ordered);
            EXPECT_EQ(after.positional, before.positional);
            EXPECT_EQ(AcceleratorLetter(pseudo), AcceleratorLetter(text));
            EXPECT_EQ(ShortcutPart(pseudo), ShortcutPart(text));
            const auto body = [](const WideText& whole) {
                return whole.size() - ShortcutPart(whole).size();
            };
            EXPECT_GE(body(pseudo) * 100, body(text) * 135);
            EXPECT_EQ(pseudo.front(), '[');
            std::string encoded;
            EXPECT_TRUE(EncodeWldString(pseudo, codePage, encoded));
        }
    }
    EXPECT_EQ(PseudoTranslate(KTW("Open"), 1252), KTW("[\u00d6p\u00e9\u00f1\u00b7\u00b7]"));
    EXPECT_EQ(PseudoTranslate(KTW("Open"), 1251), KTW("[Open\u00b7\u00b7]"));
}

// A key without a value gets one on a line of its own: not behind an empty
// line, where the dictionary would end, nor on the key's line when that is
// the last and has no line end.
TEST(Pseudo, AKeyWithoutAValueGetsOneAndKeepsTheEntriesAroundIt) {
    for (const char* text : {"\"Open\"\n\n\"Close\"\n\"Fermer\"\n",
                             "\"Close\"\r\n\"Fermer\"\r\n\"Open\""}) {
        SCOPED_TRACE(text);
        Scratch scratch;
        std::ofstream(scratch / "in.wld", std::ios::binary) << text;
        ASSERT_EQ(RunKtTool({"pseudo", scratch / "in.wld", "-o", scratch / "out.wld"}).status,
                  kSuccess);
        std::map<std::string, std::string> values;
        for (const WldEntry& entry : ReadWldEntries(scratch / "out.wld").entries)
            values[entry.key] = entry.value;
        EXPECT_EQ(values.size(), 3u);  // the language, Open, Close
        EXPECT_EQ(values["Open"].substr(0, 1), "[");
        EXPECT_EQ(values["Close"].substr(0, 1), "[");
    }
}

}  // namespace
}  // namespace kttool::test
