// run: an application that knows nothing of kticore, translated. kttool
// starts it held, loads kticore and its agent into it and runs the agent's
// entry there, which loads the dictionary and patches the application's
// modules and its calls of LoadLibrary; then the application runs. The
// paths reach the agent as the argument of that call, copied into the
// application's memory.
#include <fstream>
#include <stdexcept>

#include "kticore/translation/Translation.h"
#include "platform/Module.h"
#include "tools/kttool/AnsiText.h"
#include "tools/kttool/CommandLine.h"
#include "tools/kttool/Commands.h"
#include "tools/kttool/SuspendedApp.h"
#include "tools/kttool/WldEntries.h"
#include "tools/kttool/agent/Agent.h"

namespace kttool {
namespace {

constexpr char kHelp[] =
    "usage: kttool run APP.exe [ARGUMENTS...] --wld FILE.wld [--dlg FILE.dlg]\n"
    "\n"
    "Runs an application translated from the dictionary, though it was never\n"
    "built for it: its modules, and every module it loads later, have their\n"
    "resources, menus, dialogs and message boxes translated. The arguments\n"
    "other than kttool's own go to the application in their order.\n"
    "\n"
    "  --wld FILE.wld   the dictionary\n"
    "  --dlg FILE.dlg   layouts that take the place of the dictionary's twin's\n"
    "                   for the dialogs they name\n"
    "\n"
    "Exit status: the application's, or 2 when it cannot be started or\n"
    "translated.\n";

// kttool's own options, wherever they stand; everything else is the
// application's.
struct RunLine {
    std::string wld, dlg;
    bool help = false;
    std::vector<std::string> application;  // its path, then its arguments
};

RunLine ParseRunLine(const Arguments& args) {
    RunLine line;
    for (size_t index = 0; index < args.size(); ++index) {
        const std::string& arg = args[index];
        if (arg == "--help") {
            line.help = true;
        } else if (arg == "--wld" || arg == "--dlg") {
            if (index + 1 == args.size())
                throw UsageError(arg + " needs a value");
            (arg == "--wld" ? line.wld : line.dlg) = args[++index];
        } else {
            line.application.push_back(arg);
        }
    }
    return line;
}

void RequireReadable(const std::string& path) {
    if (!std::ifstream(path, std::ios::binary))
        throw std::runtime_error(path + ": cannot be read");
}

std::wstring PathOf(HMODULE module) {
    KTWCHAR path[kt::sys::kModulePathCapacity] = {};
    kt::sys::ModuleFileNameW(module, path);
    return path;
}

// The application may change its directory before the agent reads.
std::wstring FullPath(const std::string& path) {
    if (path.empty())
        return {};
    wchar_t full[MAX_PATH] = {};
    GetFullPathNameW(Wide(path).c_str(), MAX_PATH, full, nullptr);
    return full;
}

// The paths as the agent's entry takes them.
std::wstring AgentArgument(const std::string& wld, const std::string& dlg) {
    return FullPath(wld) + L'\0' + FullPath(dlg) + L'\0';
}

std::string StartFailure(DWORD result, const RunLine& line) {
    switch (result) {
    case agent::kDictionaryUnreadable:
        return line.wld + ": cannot be read as a dictionary in the application";
    case agent::kLayoutsUnreadable:
        return line.dlg + ": cannot be read as layouts in the application";
    default:
        return "the agent failed in the application (" + std::to_string(result) + ")";
    }
}

}  // namespace

int RunRun(const Arguments& args, std::ostream& out, std::ostream&) {
    const RunLine line = ParseRunLine(args);
    if (line.help) {
        out << kHelp;
        return kSuccess;
    }
    if (line.application.empty() || line.wld.empty())
        throw UsageError("run needs an APP.exe and --wld FILE.wld");
    const std::string& executable = line.application.front();
    RequireReadable(executable);
    RequireReadable(line.wld);
    ReadWldEntries(line.wld);  // refuses a file that is no dictionary
    if (!line.dlg.empty())
        RequireReadable(line.dlg);

    std::vector<std::wstring> arguments;
    for (auto arg = line.application.begin() + 1; arg != line.application.end(); ++arg)
        arguments.push_back(Wide(*arg));
    SuspendedApp app(Wide(executable), arguments);
    // The agent imports kticore: the library goes first, from beside kttool.
    const HMODULE library = kt::sys::ModuleContaining(reinterpret_cast<const void*>(&Supp_IsTranslationEnable));
    const HMODULE agent = kt::sys::ModuleContaining(reinterpret_cast<const void*>(&KtAgent_Start));
    if (!app.Load(PathOf(library)) || !app.Load(PathOf(agent)))
        throw std::runtime_error("kticore and kttool's agent cannot be loaded into " + executable);
    const std::wstring paths = AgentArgument(line.wld, line.dlg);
    const DWORD started = app.Call(app.Counterpart(agent, reinterpret_cast<const void*>(&KtAgent_Start)),
                                   paths.data(), paths.size() * sizeof(wchar_t));
    if (started != agent::kStarted)
        throw std::runtime_error(StartFailure(started, line));
    return static_cast<int>(app.RunToEnd());
}

}  // namespace kttool
