// fit: layouts that make every translated text fit. Each overflowing control
// is widened by what it lacks, the controls to its right in its row move
// along, and the dialog grows by what its controls then lack; the dialogs
// are made again until nothing overflows, since whole dialog units round.
#include <algorithm>
#include <fstream>
#include <map>
#include <set>

#include "kticore/params/Param.h"
#include "kticore/params/ParamTools.h"
#include "params/Held.h"
#include "tools/kttool/AnsiText.h"
#include "tools/kttool/CommandLine.h"
#include "tools/kttool/Commands.h"
#include "tools/kttool/DialogRender.h"
#include "tools/kttool/WldText.h"
#include "translation/DialogLayouts.h"
#include "translation/Lookup.h"

namespace kttool {
namespace {

// Rounds of widening before fit gives up on a text.
constexpr int kRounds = 4;

constexpr char kDialogsSection[] = "Dialogs";

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

// A dialog's section in a layout file, "[\\<module>\\Dialogs\\<name>]".
struct LayoutSection {
    std::string module;
    std::string name;  // "#100", or the dialog's name
    DWORD keyHash;     // its layout's
};

LayoutSection SectionOf(const RenderedDialog& dialog) {
    return {dialog.moduleFile,
            dialog.name.isNumber ? "#" + std::to_string(dialog.name.number)
                                 : Narrow(dialog.name.text, CP_ACP),
            dialog.keyHash};
}

// The dialogs a layout file holds, in its modules' "Dialogs" sections: those
// of other modules or not made here are written back as they came.
std::vector<LayoutSection> SectionsOf(const std::string& path) {
    using Names = CTEnum<const char*>;
    kt::params::Held<IParam> tree(new_MemParam());
    std::vector<LayoutSection> sections;
    if (path.empty() || Param_IniFile2Param(Wide(path).c_str(), tree.get()) == 0)
        return sections;
    kt::params::Held<Names> modules(tree->EnumSections());
    for (const char* module = nullptr; modules->Next(1, &module, nullptr);) {
        kt::params::Held<IParam> section(tree->GetSection(module, 0));
        kt::params::Held<IParam> dialogs(section ? section->GetSection(kDialogsSection, 0)
                                                 : nullptr);
        kt::params::Held<Names> names(dialogs ? dialogs->EnumSections() : nullptr);
        for (const char* name = nullptr; names && names->Next(1, &name, nullptr);)
            sections.push_back(
                {module, name, Supp_HashKey(kt::DialogLayoutKey(module, name).c_str())});
    }
    return sections;
}

void WriteLayouts(const std::vector<LayoutSection>& sections, const std::string& path) {
    std::ofstream file(path, std::ios::binary);
    file << "; Layouts written by kttool fit: the growth of each dialog, and the\n"
            "; moves of its controls' left, top, right and bottom edges by their\n"
            "; position in the template, in dialog units.\n";
    std::set<DWORD> written;
    for (const LayoutSection& section : sections) {
        kt::KTDlgPos* layout = nullptr;
        if (!written.insert(section.keyHash).second ||
            !kt::SuppDictionary().dialogs.Lookup(static_cast<int>(section.keyHash), layout) ||
            layout == nullptr)
            continue;
        file << "[\\" << section.module << "\\" << kDialogsSection << "\\" << section.name << "]\n";
        file << kt::kDialogSizeValue << "=z" << layout->size.cx << "," << layout->size.cy << "\n";
        std::map<int, kt::CIRect> items;  // in template order
        CTMapPosition position;
        while (const int* control = layout->items.NextKey(position))
            layout->items.Lookup(*control, items[*control]);
        for (const auto& [control, edges] : items)
            file << control << "=t" << edges.left << "," << edges.top << "," << edges.right << ","
                 << edges.bottom << "\n";
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
    const std::string layouts = LoadTranslation(line.Value("--wld", ""), line.Value("--dlg", ""));
    Dialogs dialogs = RenderAll(line.Operands());
    for (int round = 0; round < kRounds && Overflows(dialogs); ++round) {
        for (const RenderedDialog& dialog : dialogs)
            if (!dialog.overflows.empty())
                Widen(dialog);
        dialogs = RenderAll(line.Operands());
    }
    std::vector<LayoutSection> sections;
    for (const RenderedDialog& dialog : dialogs)
        sections.push_back(SectionOf(dialog));
    for (const LayoutSection& kept : SectionsOf(layouts))
        sections.push_back(kept);
    WriteLayouts(sections, line.Value("-o", ""));
    for (const RenderedDialog& dialog : dialogs)
        for (const Overflow& overflow : dialog.overflows)
            err << OverflowName(dialog, overflow) << ": still does not fit\n";
    return Overflows(dialogs) ? kFindings : kSuccess;
}

}  // namespace kttool
