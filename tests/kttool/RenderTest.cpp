// render and fit on a dialog whose controls are a little wider than their
// texts, run as the program itself: each run loads its dictionary into a
// process of its own, as a translator's does.
#include <windows.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <sstream>

#include "tests/kttool/ToolTestSupport.h"

namespace kttool::test {
namespace {

const std::string kDialogsModule = KTTOOL_DIALOGS_MODULE;
const std::string kProgram = KTTOOL_PROGRAM;
constexpr size_t kGrowthPercent = 60;

// The program's status and standard output, which goes through a file.
ToolRun RunProgram(const Arguments& args, const std::string& outputPath) {
    std::string command = "\"" + kProgram + "\"";
    for (const std::string& arg : args)
        command += " \"" + arg + "\"";
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    // Shared with writers too: under load, Wine may close the last run's
    // handle on the file only after its process is reported gone.
    HANDLE output = CreateFileA(outputPath.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (output == INVALID_HANDLE_VALUE)
        return {static_cast<int>(kFailure + 1), "cannot make " + outputPath, {}};
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output;
    startup.hStdError = output;
    PROCESS_INFORMATION process = {};
    DWORD status = kFailure + 1;
    if (CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
        WaitForSingleObject(process.hProcess, INFINITE);
        GetExitCodeProcess(process.hProcess, &status);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    CloseHandle(output);
    std::ostringstream text;
    for (const std::string& line : LinesOf(outputPath))
        text << line;
    return {static_cast<int>(status), text.str(), {}};
}

// The skeleton with each value 60 % longer: its own letters again, so that
// the text keeps its mix of wide and narrow ones.
void WriteLongerValues(const std::string& skeleton, const std::string& longer) {
    std::vector<std::string> lines = LinesOf(skeleton);
    for (size_t i = 2; i < lines.size(); ++i) {
        if (lines[i - 2][0] != ';' || lines[i - 1][0] != '"')
            continue;  // not a value
        const size_t close = lines[i].rfind('"');
        std::string letters;
        for (const char c : lines[i].substr(1, close - 1))
            if (std::isalpha(static_cast<unsigned char>(c)))
                letters += c;
        if (letters.empty())
            continue;  // the language's number
        std::string padding;
        for (size_t n = 0; n < (close - 1) * kGrowthPercent / 100; ++n)
            padding += letters[n % letters.size()];
        lines[i].insert(close, padding);
    }
    WriteLines(longer, lines);
}

// "0=t0,0,12,0" gives {0, 0, 12, 0}; none for a control the layout leaves.
std::vector<int> EdgesOf(const std::string& layout, size_t position) {
    const std::string name = std::to_string(position) + "=t";
    for (const std::string& line : LinesOf(layout)) {
        if (line.compare(0, name.size(), name) != 0)
            continue;
        std::vector<int> edges;
        std::istringstream values(line.substr(name.size()));
        for (std::string value; std::getline(values, value, ',');)
            edges.push_back(std::stoi(value));
        return edges;
    }
    return {};
}

bool HasPictures(const std::string& directory) {
    size_t pictures = 0;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        if (entry.path().extension() == ".png" && entry.file_size() > 0)
            ++pictures;
    return pictures == 1;  // the module has one dialog
}

TEST(Render, LongerTextsOverflowAndTheFittedLayoutMakesRoomForThem) {
    Scratch scratch;
    const std::string skeleton = scratch / "dialogs.wld";
    const std::string longer = scratch / "longer.wld";
    const std::string fitted = scratch / "fitted.dlg";
    const std::string output = scratch / "output.txt";
    ASSERT_EQ(RunKtTool({"extract", kDialogsModule, "-o", skeleton}).status, kSuccess);
    WriteLongerValues(skeleton, longer);

    const ToolRun clean = RunProgram({"render", kDialogsModule, "--wld", skeleton, "-o", scratch / "clean"}, output);
    EXPECT_EQ(clean.status, kSuccess) << clean.out;
    EXPECT_TRUE(HasPictures(scratch / "clean"));

    const ToolRun overflowing = RunProgram({"render", kDialogsModule, "--wld", longer, "-o", scratch / "long"}, output);
    EXPECT_EQ(overflowing.status, kFindings) << overflowing.out;
    // The label left of the field and button, the check box, and the static
    // of wrapped lines.
    for (const char* control : {"control 0 ", "control 3 ", "control 4 "})
        EXPECT_NE(overflowing.out.find(control), std::string::npos) << control << "\n" << overflowing.out;
    EXPECT_TRUE(HasPictures(scratch / "long"));

    // The layouts fit starts from: one of a module not fitted here, kept.
    const std::string start = scratch / "start.dlg";
    const std::string kept = "[\\other.dll\\Dialogs\\#7]\n";
    WriteLines(start, {kept, "9=t0,0,5,0\n"});
    const ToolRun fit =
        RunProgram({"fit", kDialogsModule, "--wld", longer, "--dlg", start, "-o", fitted}, output);
    ASSERT_EQ(fit.status, kSuccess) << fit.out;
    const std::vector<std::string> fittedLines = LinesOf(fitted);
    EXPECT_NE(std::find(fittedLines.begin(), fittedLines.end(), kept), fittedLines.end());
    EXPECT_EQ(EdgesOf(fitted, 9), (std::vector<int>{0, 0, 5, 0}));
    const ToolRun refitted =
        RunProgram({"render", kDialogsModule, "--wld", longer, "--dlg", fitted, "-o", scratch / "fitted"}, output);
    EXPECT_EQ(refitted.status, kSuccess) << refitted.out;
    EXPECT_EQ(refitted.out, "");
    EXPECT_TRUE(HasPictures(scratch / "fitted"));
    // The field and the button right of the widened label move by as much.
    const std::vector<int> label = EdgesOf(fitted, 0);
    ASSERT_EQ(label.size(), 4u);
    for (const size_t right : {1, 2})
        EXPECT_GE(EdgesOf(fitted, right).at(0), label[2]) << "control " << right;
}

// pseudo then render on the notes application: every text of its dialogs is
// pseudo-translated but the title field's default, which the rewriting leaves.
TEST(Render, ATextThatEscapesTranslationIsListed) {
    Scratch scratch;
    const std::string notesApp = std::string(KTTOOL_NOTES_APP_DIR) + "/notes_app.exe";
    const std::string skeleton = scratch / "notes.wld";
    const std::string pseudo = scratch / "pseudo.wld";
    ASSERT_EQ(RunKtTool({"extract", notesApp, "-o", skeleton}).status, kSuccess);
    ASSERT_EQ(RunKtTool({"pseudo", skeleton, "-o", pseudo}).status, kSuccess);
    const ToolRun run = RunProgram(
        {"render", notesApp, "--wld", pseudo, "-o", scratch / "pictures"}, scratch / "out.txt");
    EXPECT_EQ(run.status, kFindings);
    // Overflows may be listed too: pseudo-translation lengthens.
    const std::string escape = "escapes translation";
    EXPECT_NE(run.out.find("notes_app.exe dialog 200 control 1 \"Untitled\": " + escape),
              std::string::npos)
        << run.out;
    EXPECT_EQ(run.out.find(escape), run.out.rfind(escape)) << run.out;
}

TEST(Render, CommandLinesAreAnswered) {
    Scratch scratch;
    const struct {
        Arguments args;
        int status;
        const char* says;
    } answers[] = {
        {{"render", "--help"}, kSuccess, "usage: kttool render"},
        {{"fit", "--help"}, kSuccess, "usage: kttool fit"},
        {{"render", kDialogsModule}, kFailure, "needs at least one MODULE and -o"},
        {{"fit", kDialogsModule, "-o", "out.dlg"}, kFailure, "--wld"},
        // Not a dictionary's text: the test module itself.
        {{"render", kDialogsModule, "--wld", kDialogsModule, "-o", scratch / "pictures"},
         kFailure,
         "not a dictionary"},
    };
    for (const auto& answer : answers) {
        const ToolRun run = RunKtTool(answer.args);
        EXPECT_EQ(run.status, answer.status) << answer.says;
        EXPECT_NE((run.out + run.err).find(answer.says), std::string::npos) << run.out << run.err;
    }
}

}  // namespace
}  // namespace kttool::test
