// Entries and layouts given to the process's one dictionary as a translator
// writes them: a wld file and its dlg twin, read by Supp_AddWld. Tests use
// keys of their own, so that the order in which they run does not matter.
#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <initializer_list>
#include <string>
#include <utility>

#include "kticore/translation/DialogTemplates.h"
#include "kticore/translation/Translation.h"
#include "tests/support/ScratchDirectory.h"
#include "translation/SuppDictionary.h"

namespace kt::test {

inline void AddWldAndDlg(const std::string& wld, const std::string& dlg) {
    ScratchDirectory directory;
    WriteContent(directory / KTW("translator.wld"), wld);
    if (!dlg.empty())
        WriteContent(directory / KTW("translator.dlg"), dlg);
    EXPECT_EQ(Supp_AddWld((directory / KTW("translator.wld")).c_str()), 1);
}

// Values that hold no backslash, so that no escape is undone.
inline void AddTranslations(std::initializer_list<std::pair<const char*, const char*>> pairs) {
    std::string wld;
    for (const auto& [key, value] : pairs)
        wld += std::string("\"") + key + "\"\n\"" + value + "\"\n";
    AddWldAndDlg(wld, std::string());
}

struct PlacedEdges {
    int position;
    CIRect edges;
};

// The layout of the dialog of resource key `key` ("<module>#1#<name or
// number>"); the hash that finds it.
inline unsigned AddLayout(const std::string& key, SIZE size, std::initializer_list<PlacedEdges> controls) {
    const size_t kind = key.find("#1#");
    const std::string name = key.substr(kind + 3);
    const bool numbered = !name.empty() && std::isdigit(static_cast<unsigned char>(name[0]));
    std::string dlg = "[\\" + key.substr(0, kind) + "\\Dialogs\\" + (numbered ? "#" : "") + name + "]\r\n";
    dlg += "Dialog Size=z" + std::to_string(size.cx) + "," + std::to_string(size.cy) + "\r\n";
    for (const PlacedEdges& control : controls)
        dlg += std::to_string(control.position) + "=t" + std::to_string(control.edges.left) + "," +
               std::to_string(control.edges.top) + "," + std::to_string(control.edges.right) + "," +
               std::to_string(control.edges.bottom) + "\r\n";
    AddWldAndDlg(std::string(), dlg);
    return Supp_HashKey(key.c_str());
}

}  // namespace kt::test
