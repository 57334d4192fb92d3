// check on a dictionary that translates the test module well (its skeleton
// pseudo-translated), and on copies with one fault planted each: the fault
// is the one finding, on its line.
#include <algorithm>
#include <functional>
#include <stdexcept>

#include "tests/kttool/ToolTestSupport.h"
#include "tools/kttool/Check.h"

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
    }
    const ToolRun run = RunKtTool({"check", scratch / "faulty.wld", kTextsModule});
    EXPECT_EQ(run.status, kFindings);
    EXPECT_NE(run.out.find("faulty.wld:"), std::string::npos) << run.out;
}

}  // namespace
}  // namespace kttool::test
