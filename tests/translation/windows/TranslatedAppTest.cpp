// The example application (examples/translated_app) with its panel and forms
// modules, run as an application runs: without a dictionary, and with its
// German dictionary and layout beside it. The application reads back what
// its live windows, menus and message boxes show (menus of another process
// cannot be read under Wine) and reports it; each text is compared with the
// dictionary loaded here, and each control's rectangle with the module's own
// template moved by the layout file as read here.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "examples/translated_app/AppIds.h"
#include "kticore/translation/Translation.h"
#include "tests/support/AppReport.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/translation/TemplateWalker.h"
#include "translation/Lookup.h"

namespace kt::test {
namespace {

constexpr char kApp[] = "translated_app.exe";
constexpr char kForms[] = "order_forms.dll";
constexpr int kStressSeconds = 10;
constexpr unsigned kStressThreads = 4;

// One item name taken apart.
struct Item {
    std::string module, kind, detail;
    unsigned id = 0;

    explicit Item(const std::string& name) {
        const std::vector<std::string> fields = Split(name, '|');
        module = fields.at(0);
        kind = fields.at(1);
        id = static_cast<unsigned>(std::stoul(fields.at(2)));
        detail = fields.at(3);
    }
    // The way the resource came (LoadMenuW, CreateDialogParamA, ...).
    std::string Way() const { return detail.substr(0, detail.find('/')); }
    // A control's position, or "client".
    std::string Position() const { return detail.substr(detail.rfind('/') + 1); }
    bool IsGeometry() const {
        return detail.find("/rect/") != std::string::npos || detail.find("/units") != std::string::npos;
    }
};

// The directory of an application variant the build made: "plain" or
// "german", beside the tests' own bin directory.
std::string VariantDirectory(const char* variant) {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    std::string directory(path);
    directory.erase(directory.find_last_of("\\/") + 1);
    return directory + KT_TRANSLATED_APP_FROM_TESTS + "/" + variant + "/";
}

// The application's report after it ran with `arguments` and a report file.
Phases RunApp(const char* variant, std::vector<std::string> arguments) {
    ScratchDirectory scratch;
    const WideString report = scratch / KTW("report.txt");
    arguments.push_back(std::filesystem::path(report).string());
    ChildProcess app(VariantDirectory(variant) + kApp, arguments);
    EXPECT_TRUE(app.Started()) << variant;
    EXPECT_EQ(app.Started() ? app.Wait() : -1, 0) << variant;
    return ParseReport(report);
}

// The dialog of the module as its file holds it.
DialogShape TemplateOf(const std::string& module, unsigned id) {
    HMODULE file = LoadLibraryExA((VariantDirectory("plain") + module).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    HRSRC found = FindResourceW(file, MAKEINTRESOURCEW(id), MAKEINTRESOURCEW(5));  // RT_DIALOG
    DialogShape dialog;
    EXPECT_TRUE(found != nullptr && TemplateWalker::Read(LockResource(LoadResource(file, found)),
                                                         SizeofResource(file, found), dialog))
        << module << " " << id;
    FreeLibrary(file);
    return dialog;
}

// Whether the item passed an interceptor: not the untranslated loads, nor
// what the forms module, which never asked, loads itself.
bool Intercepted(const Item& item) {
    return item.kind != "notrans" && !(item.module == kForms && item.kind == "string");
}

// What the dictionary loaded here makes of `source`, shown as `item`.
std::wstring Translated(const Item& item, const std::wstring& source) {
    static const std::map<std::string, unsigned> kKinds = {
        {"dialog", kSuppKindDialog}, {"menu", kSuppKindMenu}, {"string", kSuppKindString}};
    if (!Intercepted(item))
        return source;
    if (item.kind == "box")
        return Wide(Supp_Translate(source.c_str()));
    // A string is keyed by its block of 16.
    const unsigned keyId = item.kind == "string" ? item.id / 16 + 1 : item.id;
    const std::string prefix = item.module + "#" + std::to_string(kKinds.at(item.kind)) + "#" + std::to_string(keyId);
    return Wide(Supp_Translate(source.c_str(), W(prefix).c_str()));
}

// Moves of the edges (left, top, right, bottom) in dialog units, by control
// position; -1 for the dialog's size.
using Layout = std::map<int, RECT>;

// The layout of dialog `id` of `module` as translated_app.dlg writes it:
// "Dialog Size=z<cx>,<cy>" and "<position>=t<left>,<top>,<right>,<bottom>".
Layout LayoutOf(const std::string& module, unsigned id) {
    const std::string section = "[\\" + module + "\\Dialogs\\#" + std::to_string(id) + "]";
    Layout layout;
    bool inSection = false;
    for (std::string line : Split(ContentOf(W(VariantDirectory("german") + "translated_app.dlg")), '\n')) {
        line = line.substr(0, line.find('\r'));
        if (!line.empty() && line[0] == '[')
            inSection = line == section;
        int position = 0;
        RECT edges = {};
        if (inSection && std::sscanf(line.c_str(), "Dialog Size=z%ld,%ld", &edges.right, &edges.bottom) == 2)
            layout[-1] = edges;
        else if (inSection && std::sscanf(line.c_str(), "%d=t%ld,%ld,%ld,%ld", &position, &edges.left, &edges.top,
                                          &edges.right, &edges.bottom) == 5)
            layout[position] = edges;
    }
    return layout;
}

// The rectangle, in client pixels, of the control at `position` (or of the
// client area, position -1) of `dialog`, from its template moved by `layout`
// and mapped as MapDialogRect maps at the dialog's base units "x y".
std::wstring ExpectedRect(const DialogShape& dialog, const Layout& layout, int position, const std::wstring& units) {
    int x = 0, y = 0, cx = dialog.cx, cy = dialog.cy;
    if (position >= 0) {
        const ItemShape& control = dialog.items.at(static_cast<size_t>(position));
        x = control.x, y = control.y, cx = control.cx, cy = control.cy;
    }
    const auto moved = layout.find(position);
    const RECT edges = moved != layout.end() ? moved->second : RECT{};
    int unitX = 0, unitY = 0;
    std::swscanf(units.c_str(), L"%d %d", &unitX, &unitY);
    return std::to_wstring(MulDiv(x + edges.left, unitX, 4)) + L" " + std::to_wstring(MulDiv(y + edges.top, unitY, 8)) +
           L" " + std::to_wstring(MulDiv(x + cx + edges.right, unitX, 4)) + L" " +
           std::to_wstring(MulDiv(y + cy + edges.bottom, unitY, 8));
}

class TranslatedApp : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        plain = RunApp("plain", {"--probe"});
        german = RunApp("german", {"--probe"});
        const std::string dictionary = VariantDirectory("german") + "translated_app.wld";
        ASSERT_EQ(Supp_AddWld(W(dictionary).c_str()), 1);
    }

    static std::wstring ExpectedRectOf(const Items& shown, const Item& item, bool translated) {
        const DialogShape dialog = TemplateOf(item.module, item.id);
        const Layout layout = translated ? LayoutOf(item.module, item.id) : Layout();
        const std::wstring units =
            shown.at(item.module + "|dialog|" + std::to_string(item.id) + "|" + item.Way() + "/units");
        const std::string position = item.Position();
        return ExpectedRect(dialog, layout, position == "client" ? -1 : std::stoi(position), units);
    }

    static Phases plain, german;
};

Phases TranslatedApp::plain, TranslatedApp::german;

TEST_F(TranslatedApp, WithoutADictionaryShowsItsDialogsAsTheirTemplatesStand) {
    const Items& shown = plain.at("on");
    unsigned dialogItems = 0;
    for (const auto& [name, text] : shown) {
        const Item item(name);
        if (item.kind != "dialog")
            continue;
        ++dialogItems;
        const DialogShape dialog = TemplateOf(item.module, item.id);
        if (item.detail.find("/caption") != std::string::npos) {
            EXPECT_EQ(text, dialog.title) << name;
        } else if (item.detail.find("/text/") != std::string::npos) {
            EXPECT_EQ(text, dialog.items.at(std::stoul(item.Position())).title.text) << name;
        } else if (item.detail.find("/rect/") != std::string::npos) {
            EXPECT_EQ(text, ExpectedRectOf(shown, item, false)) << name;
        }
    }
    // Five ways to the main dialog's 6 controls, four to the form's 2 and
    // one to the panel's 2, each with a caption, units, client area, texts
    // and rectangles.
    EXPECT_EQ(dialogItems, 5u * (3 + 2 * 6) + 4u * (3 + 2 * 2) + (3 + 2 * 2));
}

TEST_F(TranslatedApp, WithTheDictionaryShowsTranslationsAndTheLayoutInEveryWay) {
    const Items& shown = german.at("on");
    const Items& source = plain.at("on");
    ASSERT_EQ(shown.size(), source.size());
    // Each way of each module must meet a text that the dictionary changes.
    std::set<std::string> ways, translatedWays;
    for (const auto& [name, text] : shown) {
        const Item item(name);
        ASSERT_EQ(source.count(name), 1u) << name;
        if (item.IsGeometry()) {
            if (item.detail.find("/rect/") != std::string::npos) {
                EXPECT_EQ(text, ExpectedRectOf(shown, item, true)) << name;
            }
            continue;
        }
        const std::wstring expected = Translated(item, source.at(name));
        EXPECT_EQ(text, expected) << name;
        const std::string way = item.module + "|" + item.kind + "|" + item.Way();
        if (Intercepted(item))
            ways.insert(way);
        if (expected != source.at(name))
            translatedWays.insert(way);
    }
    EXPECT_EQ(translatedWays, ways);
}

TEST_F(TranslatedApp, TheSwitchTurnsEveryInterceptorOffAndBackOn) {
    EXPECT_EQ(german.at("off"), plain.at("on"));
    EXPECT_EQ(german.at("again"), german.at("on"));
}

TEST_F(TranslatedApp, LoadStringNotTransGivesTheSourceWhateverTheSwitch) {
    for (const char* phase : {"on", "off"})
        for (unsigned id : {IDS_GREETING, IDS_READY}) {
            const std::string number = std::to_string(id);
            EXPECT_EQ(german.at(phase).at(std::string(kApp) + "|notrans|" + number + "|LoadStringNotTransW"),
                      plain.at("on").at(std::string(kApp) + "|string|" + number + "|LoadStringW"));
        }
}

TEST_F(TranslatedApp, AModuleThatDidNotAskLoadsItsOwnStringsUntranslated) {
    const std::string name = std::string(kForms) + "|string|" + std::to_string(IDS_FORM_NOTE) + "|LoadStringW";
    const std::wstring source = plain.at("on").at(name);
    EXPECT_NE(Wide(Supp_Translate(source.c_str())), source) << "the dictionary has a translation";
    EXPECT_EQ(german.at("on").at(name), source);
}

TEST_F(TranslatedApp, FourThreadsAtOnceSeeTheTranslationsEveryTime) {
    const Phases stress = RunApp("german", {"--stress", std::to_string(kStressSeconds)});
    const Items& translated = german.at("on");
    for (unsigned thread = 0; thread < kStressThreads; ++thread) {
        const std::string n = std::to_string(thread);
        ASSERT_EQ(stress.count("stress" + n), 1u) << thread;
        EXPECT_GT(std::stoul(stress.at("count").at(n + "|iterations")), 1ul) << thread;
        const auto odd = stress.find("odd" + n);  // a phase without items is not written
        EXPECT_EQ(odd != stress.end() ? odd->second : Items(), Items()) << thread;
        // Everything but the message boxes, as the probe saw it.
        Items expected;
        for (const auto& [name, text] : translated)
            if (Item(name).kind != "box")
                expected[name] = text;
        EXPECT_EQ(stress.at("stress" + n), expected) << thread;
    }
}

}  // namespace
}  // namespace kt::test
