// check on a dictionary that translates the test module well (its skeleton
// pseudo-translated), and on copies with one fault planted each: the fault
// is the one finding, on its line.
#include <algorithm>
#include <functional>
#include <stdexcept>

#include "tests/kttool/ToolTestSupport.h"
#include "tools/kttool/Check.h"
#include "translation/Lookup.h"
#include "translation/SuppDictionary.h"

namespace kttool::test {
namespace {

using Lines = std::vector<std::string>;

std::string Quoted(const std::string& text) { return "\"" + text + "\"\r\n"; }

// The index of the line that holds `key`; a test whose key is not there
// fails by the exception.
size_t KeyAt(const Lines& lines, const std::string& key) {
    const auto found = std::find(lines.begin(), lines.end(), Quoted(key));
    if (found == lines.end())
        throw std::runtime_error("no line holds " + key);
    return static_cast<size_t>(found - lines.begin());
}

// Each edit answers the line of the finding it plants, 0 for one without.
unsigned SetValue(Lines& lines, const std::string& key, const std::string& value) {
    const size_t at = KeyAt(lines, key);
    lines[at + 1] = Quoted(value);
    return static_cast<unsigned>(at + 1);
}
unsigned Append(Lines& lines, const std::string& key, const std::string& value) {
    lines.push_back(Quoted(key));
    lines.push_back(Quoted(value));
    return static_cast<unsigned>(lines.size() - 1);
}
unsigned Remove(Lines& lines, const std::string& key) {
    const size_t at = KeyAt(lines, key);
    lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(at),
                lines.begin() + static_cast<std::ptrdiff_t>(at + 2));
    return 0;
}

struct PlantedFault {
    const char* kind;
    std::function<unsigned(Lines&)> plant;
};

const PlantedFault kFaults[] = {
    {"missing", [](Lines& l) { return Remove(l, "texts.dll#3#1Open file %s"); }},
    {"unused", [](Lines& l) { return Append(l, "texts.dll#3#9Nothing", "Rien"); }},
    {"duplicate", [](Lines& l) { return Append(l, "texts.dll#1#100Cancel", "Annuler"); }},
    // h * 257 + c: "0}" and "/" with U+017E (0x9E in code page 1252) hash alike.
    {"hash-collision",
     [](Lines& l) { return Append(l, "texts.dll#1#ABOUTVersion {/\x9e", "Version"); }},
    {"placeholders",
     [](Lines& l) { return SetValue(l, "texts.dll#3#1Saved %d of %d files", "[%d fichiers]"); }},
    {"placeholders",
     [](Lines& l) {
         return SetValue(l, "texts.dll#3#2Replace %1 with %2?", "[Remplacer %1 par %3 ?]");
     }},
    {"accelerators",
     [](Lines& l) { return SetValue(l, "texts.dll#1#100&Remember", "[Se souvenir]"); }},
    // &Copy keeps its C: &Coller takes it too, in the same menu.
    {"accelerators", [](Lines& l) { return SetValue(l, "texts.dll#2#200&Paste", "[&Coller]"); }},
    {"shortcut",
     [](Lines& l) {
         return SetValue(l, "texts.dll#2#200&Save\\tCtrl+S", "[&Enregistrer]\\tCtrl+E");
     }},
    {"untranslated", [](Lines& l) { return SetValue(l, "texts.dll#1#100Cancel", "Cancel"); }},
    // An empty value shows the whole key: no '&' count to compare.
    {"untranslated", [](Lines& l) { return SetValue(l, "texts.dll#1#100&Remember", ""); }},
    {"language", [](Lines& l) { return Remove(l, "KT_WLD_LANG_ID"); }},
    {"language", [](Lines& l) { return SetValue(l, "KT_WLD_LANG_ID", "French") + 1; }},
    // Saved as UTF-8 under a language of code page 1252.
    {"language",
     [](Lines& l) { return SetValue(l, "texts.dll#1#100Settings", "Param\xC3\xA8tres") + 1; }},
};

class Check : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(RunKtTool({"extract", kTextsModule, "-o", scratch / "skeleton.wld"}).status,
                  kSuccess);
        ASSERT_EQ(RunKtTool({"pseudo", scratch / "skeleton.wld", "-o", clean}).status, kSuccess);
    }

    std::vector<Finding> FindingsOf(const std::string& path) {
        return CheckDictionary(ReadWldEntries(path), {ReadModule(kTextsModule)}, 0);
    }

    Scratch scratch;
    const std::string clean = scratch / "clean.wld";
};

TEST_F(Check, AWellTranslatedDictionaryHasNoFinding) {
    EXPECT_TRUE(FindingsOf(clean).empty());
    EXPECT_EQ(RunKtTool({"check", clean, kTextsModule}).status, kSuccess);
}

TEST_F(Check, EachPlantedFaultIsTheOneFindingOnItsLine) {
    for (const PlantedFault& fault : kFaults) {
        Lines lines = LinesOf(clean);
        const unsigned line = fault.plant(lines);
        SCOPED_TRACE(std::string(fault.kind) + " planted at line " + std::to_string(line));
        WriteLines(scratch / "faulty.wld", lines);
        const std::vector<Finding> findings = FindingsOf(scratch / "faulty.wld");
        std::string listed;
        for (const Finding& finding : findings)
            listed += std::to_string(finding.line) + ": " + finding.message + "\n";
        ASSERT_EQ(findings.size(), 1u) << listed;
        EXPECT_EQ(findings[0].kind, fault.kind) << findings[0].message;
        EXPECT_EQ(findings[0].line, line) << findings[0].message;
        const ToolRun run = RunKtTool({"check", scratch / "faulty.wld", kTextsModule});
        EXPECT_EQ(run.status, kFindings);
        EXPECT_NE(run.out.find("faulty.wld:"), std::string::npos) << run.out;
    }
}

// The rewriting of the module's dialogs, which set their font, looks the
// dictionary's face name up.
TEST_F(Check, AnEntryForTheDialogFontIsInUse) {
    Lines lines = LinesOf(clean);
    const WideText face(kt::SuppDictionary().fontName);
    Append(lines, std::string(face.begin(), face.end()), "Tahoma");
    WriteLines(scratch / "font.wld", lines);
    EXPECT_TRUE(FindingsOf(scratch / "font.wld").empty());
}

// Modules and dictionaries made in place, for what the test module lacks.
ModuleText MenuOrStringText(unsigned kind, std::uint32_t language, std::string position,
                            const char* text) {
    ModuleText made;
    made.kind = kind;
    made.resource = ResourceName::Number(kind == kSuppKindMenu ? 200 : 1);
    made.language = language;
    made.position = std::move(position);
    made.scope = kind == kSuppKindMenu ? 1 : 0;
    made.text.assign(text, text + std::char_traits<char>::length(text));
    return made;
}

WldEntries DictionaryOf(std::vector<std::pair<std::string, std::string>> pairs) {
    pairs.insert(pairs.begin(), {"KT_WLD_LANG_ID", "1033"});
    WldEntries dictionary;
    for (auto& [key, value] : pairs) {
        const auto line = static_cast<unsigned>(2 * dictionary.entries.size() + 1);
        dictionary.entries.push_back({key, value, line, line + 1});
    }
    dictionary.entries.front().isLanguage = true;
    dictionary.languageId = 1033;
    return dictionary;
}

std::vector<Finding> FindingsIn(const WldEntries& dictionary, std::vector<ModuleText> texts) {
    Module module;
    module.fileName = "app.dll";
    module.keyName = KTW("app.dll");
    module.texts = std::move(texts);
    return CheckDictionary(dictionary, {module}, 0);
}

TEST(CheckInPlace, AMissingTextIsReportedOnceForAllItsLanguages) {
    const std::vector<Finding> findings = FindingsIn(
        DictionaryOf({}), {MenuOrStringText(kSuppKindString, 1033, "string 0", "Hello"),
                           MenuOrStringText(kSuppKindString, 1031, "string 0", "Hello")});
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(findings[0].kind, "missing");
}

// Both letters were O in the module; translation gives both an f.
TEST(CheckInPlace, ALetterTwoTextsShareAfterTranslationIsReportedThoughTheyClashedBefore) {
    const std::vector<Finding> findings = FindingsIn(
        DictionaryOf({{"app.dll#2#200&Open", "O&ffnen"}, {"app.dll#2#200&Options", "&Fenster"}}),
        {MenuOrStringText(kSuppKindMenu, 1033, "item 0", "&Open"),
         MenuOrStringText(kSuppKindMenu, 1033, "item 1", "&Options")});
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(findings[0].kind, "accelerators");
    EXPECT_EQ(findings[0].line, 5u);
}

// An empty line where a key is due ends the dictionary, also before entries.
TEST(CheckInPlace, AnEmptyLineThatEndsTheDictionaryIsReported) {
    Scratch scratch;
    const std::string path = scratch / "ended.wld";
    std::ofstream(path, std::ios::binary)
        << "\"KT_WLD_LANG_ID\"\n\"1033\"\n\n\"Open\"\n\"Ouvrir\"\n";
    const std::vector<Finding> findings = CheckDictionary(ReadWldEntries(path), {}, 0);
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(findings[0].kind, "ended");
    EXPECT_EQ(findings[0].line, 3u);
}

// The language as the library reads it: atoi takes "1049 " as 1049, whose
// code page 1251 then reads the value.
TEST(CheckInPlace, TheLanguageIsReadAsTheLibraryReadsIt) {
    Scratch scratch;
    const std::string path = scratch / "russian.wld";
    std::ofstream(path, std::ios::binary)
        << "\"KT_WLD_LANG_ID\"\n\"1049 \"\n\"Open\"\n\"\xce\xf2\xea\xf0\xfb\xf2\xfc\"\n";
    const std::vector<Finding> findings = CheckDictionary(ReadWldEntries(path), {}, 0);
    for (const Finding& finding : findings)
        ADD_FAILURE() << finding.kind << ": " << finding.message;
}

}  // namespace
}  // namespace kttool::test
