// params: a parameter tree copied from one place to another, whatever keeps
// it: the text form, a profile file, the registry, a compound file.
#include "kticore/params/ParamTools.h"
#include "tools/kttool/CommandLine.h"
#include "tools/kttool/Commands.h"
#include "tools/kttool/FailureWords.h"
#include "tools/kttool/ParamPlaces.h"
#include "tools/kttool/PlaceName.h"

namespace kttool {
namespace {

constexpr char kHelp[] =
    "usage: kttool params FROM TO\n"
    "\n"
    "Copies the parameter tree at FROM into TO. TO keeps what it holds: sections\n"
    "merge, values of the same name are overwritten. What TO has no form for is\n"
    "left out, as its back end does: a profile file keeps neither objects nor\n"
    "wide text, the registry no objects, the text form wide text as narrow text.\n"
    "\n"
    "Places:\n"
    "  text:FILE         the text form ([\\section] lines, name=marked value)\n"
    "  ini:FILE          a private profile file as kticore keeps trees in one\n"
    "  reg:HKCU\\KEY      a registry key below HKEY_CURRENT_USER, or HKLM\\KEY\n"
    "                    below HKEY_LOCAL_MACHINE; a missing TO key is made\n"
    "  stor:FILE         a compound file; stor:FILE:PATH a storage in it, with\n"
    "                    PATH's sections joined by \\; a missing TO file is made\n"
    "  -                 standard output, in the text form (TO only)\n"
    "\n"
    "FROM is only read. A FROM that is missing is an error; a TO that is missing\n"
    "is made. FROM and TO must not overlap: not the same file, nor a key and\n"
    "one below it.\n";

}  // namespace

int RunParams(const Arguments& args, std::ostream& out, std::ostream&) {
    const CommandLine line(args, {}, {"--help"});
    if (line.Has("--help")) {
        out << kHelp;
        return kSuccess;
    }
    if (line.Operands().size() != 2)
        throw UsageError("params needs FROM and TO");
    const std::string& fromName = line.Operands()[0];
    const std::string& toName = line.Operands()[1];
    if (Overlap(ParsePlace(fromName), ParsePlace(toName)))
        throw UsageError(fromName + " and " + toName +
                         " overlap: a tree cannot be copied into itself or its own part");
    const auto from = OpenPlace(fromName, PlaceRole::kSource);
    const auto to = OpenPlace(toName, PlaceRole::kDestination);
    try {
        Param_CopyTo(from->Tree(), to->Tree());
    } catch (const CXException& failure) {
        throw std::runtime_error(fromName + " cannot be copied to " + toName + " (" +
                                 FailureWords(failure.code) + ")");
    }
    try {
        to->Finish(out);
    } catch (const CXException& failure) {
        throw std::runtime_error(toName + ": cannot be written (" + FailureWords(failure.code) +
                                 ")");
    }
    return kSuccess;
}

}  // namespace kttool
