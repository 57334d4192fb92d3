// fit: layouts that make every translated text fit. Each overflowing control
// is widened by what it lacks, the controls to its right in its row move
// along, and the dialog grows by what its controls then lack; the dialogs
// are made again until nothing overflows, since whole dialog units round.
#include <algorithm>
#include <fstream>
#include <map>

#include "tools/kttool/CommandLine.h"
#include "tools/kttool/Commands.h"
#include "tools/kttool/DialogRender.h"
#include "tools/kttool/WldText.h"
#include "translation/DialogLayouts.h"

namespace kttool {
namespace {

// Rounds of widening before fit gives up on a text.
constexpr int kRounds = 4;

constexpr char kHelp[] =
    "usage: kttool fit MODULE... --wld FILE.wld [--dlg FILE.dlg] -o OUT.dlg\n"
    "\n"
    "Writes the layouts that make every text of the modules' dialogs fit with the\n"
    "dictionary: each control whose text does not fit is widened just enough, the\n"
    "controls to its right move along, and the dialog grows with them. The\n"
    "layouts of --dlg (default: the dictionary's twin) are the starting point and\n"
    "are kept in OUT.dlg; use OUT.dlg as the dictionary's twin.\n"
    "\n"
    "  --wld FILE.wld   the dictionary\n"
    "  --dlg FILE.dlg   the layouts to start from\n"
    "  -o OUT.dlg       the layouts to write\n"
    "\n"
    "Exit status: 0 everything fits, 1 some text still does not (named on the\n"
    "error stream), 2 bad input.\n";

using Dialogs = std::vector<RenderedDialog>;

Dialogs RenderAll(const Arguments& modules) {
    Dialogs all;
    for (const std::string& path : modules) {
        Dialogs dialogs = RenderDialogs(path, "");
        all.insert(all.end(), dialogs.begin(), dialogs.end());
    }
    return all;
}

bool Overflows(const Dialogs& dialogs) {
    return std::any_of(dialogs.begin(), dialogs.end(),
                       [](const RenderedDialog& dialog) { return !dialog.overflows.empty(); });
}

// The dialog's layout in the process's dictionary, made when it has none.
kt::KTDlgPos& LayoutOf(const RenderedDialog& dialog) {
    auto& layouts = kt::SuppDictionary().dialogs;
    kt::KTDlgPos* layout = nullptr;
    if (!layouts.Lookup(static_cast<int>(dialog.keyHash), layout) || layout == nullptr) {
        layout = new kt::KTDlgPos;
        layouts.Set(static_cast<int>(dialog.keyHash), layout);
    }
    return *layout;
}

void MoveEdges(kt::KTDlgPos& layout, size_t position, int left, int right) {
    kt::CIRect edges;
    layout.items.Lookup(static_cast<int>(position), edges);
    edges.left += left;
    edges.right += right;
    layout.items.Set(static_cast<int>(position), edges);
}

bool SharesRow(const RECT& a, const RECT& b) { return a.top < b.bottom && b.top < a.bottom; }

void Widen(const RenderedDialog& dialog) {
    kt::KTDlgPos& layout = LayoutOf(dialog);
    const std::vector<RECT>& controls = dialog.controls;
    std::vector<int> moved(controls.size(), 0);  // right edges, in dialog units
    for (const Overflow& overflow : dialog.overflows) {
        const RECT& widened = controls[overflow.position];
        MoveEdges(layout, overflow.position, 0, overflow.dialogUnits);
        moved[overflow.position] += overflow.dialogUnits;
        for (size_t other = 0; other < controls.size(); ++other) {
            if (controls[other].left >= widened.right && SharesRow(controls[other], widened)) {
                MoveEdges(layout, other, overflow.dialogUnits, overflow.dialogUnits);
                moved[other] += overflow.dialogUnits;
            }
        }
    }
    int growth = 0;
    for (size_t i = 0; i < controls.size(); ++i) {
        const int room = (dialog.clientWidth - controls[i].right) * 4 / dialog.fourUnits;
        growth = std::max(growth, moved[i] - room);
    }
    layout.size.cx += growth;
}

std::string SectionOf(const RenderedDialog& dialog) {
    const std::string name = dialog.name.isNumber ? "#" + std::to_string(dialog.name.number)
                                                  : Narrow(dialog.name.text, CP_ACP);
    return "[\\" + dialog.moduleFile + "\\Dialogs\\" + name + "]";
}

void WriteLayouts(const Dialogs& dialogs, const std::string& path) {
    std::ofstream file(path, std::ios::binary);
    file << "; Layouts written by kttool fit: the growth of each dialog, and the\n"
            "; moves of its controls' left, top, right and bottom edges by their\n"
            "; position in the template, in dialog units.\n";
    for (const RenderedDialog& dialog : dialogs) {
        kt::KTDlgPos* layout = nullptr;
        if (!kt::SuppDictionary().dialogs.Lookup(static_cast<int>(dialog.keyHash), layout) || layout == nullptr)
            continue;
        file << SectionOf(dialog) << "\n";
        file << kt::kDialogSizeValue << "=z" << layout->size.cx << "," << layout->size.cy << "\n";
        for (size_t position = 0; position < dialog.controls.size(); ++position) {
            kt::CIRect edges;
            if (layout->items.Lookup(static_cast<int>(position), edges))
                file << position << "=t" << edges.left << "," << edges.top << "," << edges.right << ","
                     << edges.bottom << "\n";
        }
    }
    file.close();
    if (!file)
        throw std::runtime_error(path + ": cannot be written");
}

}  // namespace

int RunFit(const Arguments& args, std::ostream& out, std::ostream& err) {
    const CommandLine line(args, {"-o", "--wld", "--dlg"}, {"--help"});
    if (line.Has("--help")) {
        out << kHelp;
        return kSuccess;
    }
    if (line.Operands().empty() || !line.Has("--wld") || !line.Has("-o"))
        throw UsageError("fit needs at least one MODULE, --wld FILE.wld and -o OUT.dlg");
    LoadTranslation(line.Value("--wld", ""), line.Value("--dlg", ""));
    Dialogs dialogs = RenderAll(line.Operands());
    for (int round = 0; round < kRounds && Overflows(dialogs); ++round) {
        for (const RenderedDialog& dialog : dialogs)
            if (!dialog.overflows.empty())
                Widen(dialog);
        dialogs = RenderAll(line.Operands());
    }
    WriteLayouts(dialogs, line.Value("-o", ""));
    for (const RenderedDialog& dialog : dialogs)
        for (const Overflow& overflow : dialog.overflows)
            err << OverflowName(dialog, overflow) << ": still does not fit\n";
    return Overflows(dialogs) ? kFindings : kSuccess;
}

}  // namespace kttool
