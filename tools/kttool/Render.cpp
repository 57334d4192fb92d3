// render: every dialog of the modules as a translated application shows it,
// written as a picture, and the controls whose texts do not fit.
#include <filesystem>

#include "tools/kttool/CommandLine.h"
#include "tools/kttool/Commands.h"
#include "tools/kttool/DialogRender.h"
#include "tools/kttool/WldText.h"

namespace kttool {
namespace {

constexpr char kHelp[] =
    "usage: kttool render MODULE... [--wld FILE.wld] [--dlg FILE.dlg] -o DIR\n"
    "\n"
    "Makes every dialog of the modules the way kticore serves it to a translated\n"
    "application (texts from the dictionary, layout from the .dlg file) and saves\n"
    "it as DIR/<module>_<dialog>.png. Prints one line for each control whose text\n"
    "does not fit its rectangle in the dialog's font, with the dialog units it\n"
    "lacks; those controls are outlined in red in the pictures. With a dictionary,\n"
    "also one line for each text of a dialog that is none of its translations: a\n"
    "text that escapes translation, such as one a control class keeps that the\n"
    "rewriting does not translate (an edit field's), or one with no entry. With a\n"
    "pseudo-translated dictionary these are the texts left unaccented.\n"
    "\n"
    "  --wld FILE.wld   the dictionary (default: none, the texts as they are)\n"
    "  --dlg FILE.dlg   the layouts (default: the dictionary's twin, FILE.dlg)\n"
    "  -o DIR           where the pictures go; made when missing\n"
    "\n"
    "Exit status: 0 everything fits and is translated, 1 some text does not fit\n"
    "or escapes translation, 2 bad input or a dialog that cannot be made.\n";

}  // namespace

int RunRender(const Arguments& args, std::ostream& out, std::ostream& err) {
    const CommandLine line(args, {"-o", "--wld", "--dlg"}, {"--help"});
    if (line.Has("--help")) {
        out << kHelp;
        return kSuccess;
    }
    if (line.Operands().empty() || !line.Has("-o"))
        throw UsageError("render needs at least one MODULE and -o DIR");
    LoadTranslation(line.Value("--wld", ""), line.Value("--dlg", ""));
    const std::string pictures = line.Value("-o", "");
    std::error_code unmade;  // a directory that cannot be made fails at the first picture
    std::filesystem::create_directories(pictures, unmade);
    int status = kSuccess;
    for (const std::string& path : line.Operands()) {
        for (const RenderedDialog& dialog : RenderDialogs(path, pictures)) {
            if (!dialog.created) {
                err << DialogName(dialog) << ": cannot be made\n";
                status = kFailure;
            }
            for (const Overflow& overflow : dialog.overflows) {
                out << OverflowName(dialog, overflow) << ": " << overflow.dialogUnits
                    << " dialog units too narrow\n";
                if (status == kSuccess)
                    status = kFindings;
            }
            for (const Escape& escape : dialog.escapes) {
                out << EscapeName(dialog, escape) << ": escapes translation\n";
                if (status == kSuccess)
                    status = kFindings;
            }
        }
    }
    return status;
}

}  // namespace kttool
