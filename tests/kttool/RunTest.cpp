// kttool run on the notes application, which knows nothing of kticore: what
// its live window, menu, dialogs, message box and late print module show
// (the application reads it back itself: menus of another process cannot
// be read under Wine), run as it comes and run by kttool with its German
// dictionary and layouts.
#include <windows.h>

#include <cstdio>
#include <filesystem>

#include "tests/kttool/ToolTestSupport.h"
#include "tests/support/AppReport.h"
#include "tests/support/ChildProcess.h"
#include "tools/kttool/SuspendedApp.h"

namespace kttool::test {
namespace {

using kt::test::Items;

const std::string kNotesDirectory = KTTOOL_NOTES_APP_DIR;
const std::string kNotesApp = kNotesDirectory + "/notes_app.exe";
const std::string kNotesWld = kNotesDirectory + "/notes_app.wld";
const std::string kPrintCheckBox = "notes_print.dll|dialog|300|DialogBoxParamW/rect/2";

// The report the application wrote, read back.
Items ReportOf(const std::string& path) {
    const kt::test::Phases phases = kt::test::ParseReport(std::filesystem::path(path).wstring());
    return phases.count("run") != 0 ? phases.at("run") : Items();
}

Items RunPlainly(const Scratch& scratch) {
    const std::string report = scratch / "plain.txt";
    kt::test::ChildProcess app(kNotesApp, {"--probe", report});
    EXPECT_EQ(app.Started() ? app.Wait() : -1, 0);
    return ReportOf(report);
}

Items RunUnderKtTool(const Scratch& scratch, const Arguments& options) {
    const std::string report = scratch / "run.txt";
    Arguments args = {"run", kNotesApp, "--probe", report};
    args.insert(args.end(), options.begin(), options.end());
    const ToolRun run = RunKtTool(args);
    EXPECT_EQ(run.status, kSuccess) << run.err;
    return ReportOf(report);
}

std::wstring Shown(const Items& items, const std::string& item) {
    const auto found = items.find(item);
    return found != items.end() ? found->second : L"<not shown>";
}

// The width of a control's rectangle "left top right bottom".
int WidthOf(const std::wstring& rect) {
    int left = 0, top = 0, right = 0, bottom = 0;
    std::swscanf(rect.c_str(), L"%d %d %d %d", &left, &top, &right, &bottom);
    return right - left;
}

class RunNotesApp : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        Scratch scratch;
        plain = RunPlainly(scratch);
        translated = RunUnderKtTool(scratch, {"--wld", kNotesWld});
    }

    static Items plain, translated;
};

Items RunNotesApp::plain, RunNotesApp::translated;

TEST_F(RunNotesApp, ShowsEveryKindOfTextTranslatedOnlyUnderRun) {
    const struct {
        const char* item;
        const wchar_t* english;
        const wchar_t* german;
    } kTexts[] = {
        {"notes_app.exe|window|0|caption", L"Notes", L"Notizen"},
        {"notes_app.exe|window|0|status", L"No notes yet", L"Noch keine Notizen"},
        {"notes_app.exe|menu|100|window/0", L"&File", L"&Datei"},
        {"notes_app.exe|menu|100|window/0.0", L"&New note...\tCtrl+N", L"&Neue Notiz...\tCtrl+N"},
        {"notes_app.exe|menu|100|window/1.0", L"&About Notes", L"\u00dc&ber Notizen"},
        {"notes_app.exe|dialog|200|DialogBoxParamW/caption", L"New note", L"Neue Notiz"},
        {"notes_app.exe|dialog|200|DialogBoxParamW/text/4", L"Keep on top", L"Im Vordergrund halten"},
        {"notes_app.exe|box|0|MessageBoxA/caption", L"About Notes", L"\u00dcber Notizen"},
        {"notes_app.exe|box|0|MessageBoxA/text", L"Notes keeps short notes.", L"Notizen bewahrt kurze Notizen auf."},
        // The print module, loaded by the application only when it prints.
        {"notes_app.exe|module|0|print module loaded at start", L"no", L"no"},
        {"notes_print.dll|dialog|300|DialogBoxParamW/caption", L"Print notes", L"Notizen drucken"},
        {"notes_print.dll|dialog|300|DialogBoxParamW/text/2", L"Every note", L"Jede einzelne Notiz"},
        {"notes_print.dll|string|20|LoadStringW", L"Sent to the printer", L"An den Drucker gesendet"},
    };
    for (const auto& text : kTexts) {
        EXPECT_EQ(Shown(plain, text.item), text.english) << text.item;
        EXPECT_EQ(Shown(translated, text.item), text.german) << text.item;
    }
}

TEST_F(RunNotesApp, WidensTheLateModulesDialogByTheDictionarysTwin) {
    EXPECT_GT(WidthOf(Shown(translated, kPrintCheckBox)), WidthOf(Shown(plain, kPrintCheckBox)));
}

TEST(RunLayouts, AnExplicitLayoutFileTakesThePlaceOfTheTwinsForItsDialogs) {
    Scratch scratch;
    const std::string unchanged = scratch / "unchanged.dlg";
    WriteLines(unchanged, {"[\\notes_print.dll\\Dialogs\\#300]\n", "2=t0,0,0,0\n"});
    const Items plain = RunPlainly(scratch);
    const Items laidOut = RunUnderKtTool(scratch, {"--wld", kNotesWld, "--dlg", unchanged});
    EXPECT_EQ(WidthOf(Shown(laidOut, kPrintCheckBox)), WidthOf(Shown(plain, kPrintCheckBox)));
}

TEST(RunFailures, EachHasAMessageAndStatusTwo) {
    Scratch scratch;
    const std::string notAnExecutable = scratch / "not.exe";
    WriteLines(notAnExecutable, {"plain text\n"});
    const std::string missing = scratch / "missing";
    const struct {
        Arguments args;
        const char* message;
    } kFailures[] = {
        {{"run", kNotesApp}, "needs an APP.exe and --wld"},
        {{"run", missing + ".exe", "--wld", kNotesWld}, "missing.exe: cannot be read"},
        {{"run", kNotesApp, "--wld", missing + ".wld"}, "missing.wld: cannot be read"},
        {{"run", kNotesApp, "--wld", kNotesWld, "--dlg", missing + ".dlg"},
         "missing.dlg: cannot be read"},
        {{"run", notAnExecutable, "--wld", kNotesWld}, "cannot start the application"},
        {{"run", kNotesApp, "--wld", notAnExecutable}, "not a dictionary"},
    };
    for (const auto& failure : kFailures) {
        const ToolRun run = RunKtTool(failure.args);
        EXPECT_EQ(run.status, kFailure) << failure.message;
        EXPECT_NE(run.err.find(failure.message), std::string::npos) << run.err;
    }
}

TEST(RunCommandLine, HandsEveryArgumentToTheApplicationUnchanged) {
    const std::vector<std::wstring> arguments = {L"plain", L"two words", L"", L"say \"hi\"", L"C:\\dir\\",
                                                 L"C:\\dir with blank\\", L"back\\\\\"slashes"};
    int count = 0;
    wchar_t** parsed = CommandLineToArgvW(CommandLineOf(L"C:\\app dir\\app.exe", arguments).c_str(), &count);
    ASSERT_EQ(count, static_cast<int>(arguments.size()) + 1);
    EXPECT_STREQ(parsed[0], L"C:\\app dir\\app.exe");
    for (size_t index = 0; index < arguments.size(); ++index)
        EXPECT_EQ(parsed[index + 1], arguments[index]) << index;
    LocalFree(parsed);
}

}  // namespace
}  // namespace kttool::test
