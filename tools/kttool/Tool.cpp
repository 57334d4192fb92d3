// The dispatch of subcommands, and the answer to a command line that cannot
// be run or input that cannot be read: a message and a status, never a crash.
#include <stdexcept>

#include "tools/kttool/CommandLine.h"
#include "tools/kttool/Commands.h"
#include "tools/kttool/PeResources.h"

namespace kttool {
namespace {

constexpr char kHelp[] =
    "usage: kttool COMMAND [ARGUMENTS] (kttool COMMAND --help for each)\n"
    "\n"
    "The translator's tool for kticore dictionaries (.wld files).\n"
    "\n"
    "  extract MODULE... -o FILE.wld   every text of the modules as a skeleton\n"
    "  check FILE.wld MODULE...        what the dictionary misses or gets wrong\n"
    "  pseudo FILE.wld -o OUT.wld      pseudo-translated values, for testing\n"
    "  params FROM TO                  copies a parameter tree between places\n"
#if defined(_WIN32)
    "  render MODULE... -o DIR         the translated dialogs as pictures, and\n"
    "                                  the texts that do not fit\n"
    "  fit MODULE... --wld F -o F.dlg  layouts that make the texts fit\n"
    "  run APP.exe [ARGS...] --wld F   an application translated, though it was\n"
    "                                  never built for it\n"
    "  storage FILE [--values]         the storages and streams of a compound file\n"
#endif
    "\n"
    "Exit status: 0 done, 1 check or render found something, 2 bad command line\n"
    "or input.\n";

using Command = int (*)(const Arguments&, std::ostream&, std::ostream&);

Command CommandNamed(const std::string& name) {
    if (name == "extract")
        return RunExtract;
    if (name == "check")
        return RunCheck;
    if (name == "pseudo")
        return RunPseudo;
    if (name == "params")
        return RunParams;
#if defined(_WIN32)
    if (name == "render")
        return RunRender;
    if (name == "fit")
        return RunFit;
    if (name == "run")
        return RunRun;
    if (name == "storage")
        return RunStorage;
#endif
    return nullptr;
}

}  // namespace

int RunTool(const Arguments& args, std::ostream& out, std::ostream& err) {
    if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        (args.empty() ? err : out) << kHelp;
        return args.empty() ? kFailure : kSuccess;
    }
    const Command command = CommandNamed(args[0]);
    if (command == nullptr) {
        err << "kttool: unknown command \"" << args[0] << "\"\n" << kHelp;
        return kFailure;
    }
    try {
        return command(Arguments(args.begin() + 1, args.end()), out, err);
    } catch (const UsageError& error) {
        err << "kttool " << args[0] << ": " << error.what() << " (see kttool " << args[0]
            << " --help)\n";
    } catch (const std::exception& error) {
        err << "kttool " << args[0] << ": " << error.what() << "\n";
    }
    return kFailure;
}

}  // namespace kttool
