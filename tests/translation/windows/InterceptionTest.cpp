// The interceptors installed in the test executable for each test: its own
// calls of LoadString, LoadMenu, FindResource, the message boxes and dialogs,
// made by name, reach the library, and its resources
// (TranslationResources.rc) come back translated.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <functional>
#include <string>

#include "kticore/translation/Interception.h"
#include "tests/translation/TestDictionary.h"
#include "translation/Lookup.h"
#include "translation/ResourceRecords.h"

namespace kt::test {
namespace {

constexpr std::uintptr_t kResourceTypeBitmap = 2;

HMODULE ThisModule() { return GetModuleHandleW(nullptr); }

// The key prefix of resource `name` of the executable: its file name, the
// kind and the name.
std::string Key(unsigned kind, const std::string& name) {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(ThisModule(), path, MAX_PATH);
    const std::string file(path);
    return file.substr(file.find_last_of("\\/") + 1) + "#" + std::to_string(kind) + "#" + name;
}

std::string TextOf(HWND window) {
    char text[256] = {};
    GetWindowTextA(window, text, 256);
    return text;
}

std::wstring ItemText(HMENU menu, UINT position) {
    wchar_t text[256] = {};
    GetMenuStringW(menu, position, text, 256, MF_BYPOSITION);
    return text;
}

// The system's function itself, past the executable's patched import.
#define KT_SYSTEM(library, name)         \
    reinterpret_cast<decltype(&::name)>( \
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(library), #name)))

class Interception : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(Supp_InitResTranslation(ThisModule()), 1); }
    void TearDown() override {
        Supp_SetTranslationEnable(1);
        EXPECT_EQ(_DeInitResTranslation(ThisModule()), 1);
    }
};

// Block 19 holds 300 to 302, block 21 holds 320.
TEST_F(Interception, StringsPreferTheEntryKeyedByTheirBlock) {
    AddTranslations({{(Key(kSuppKindString, "19") + "it.Keyed").c_str(), "Keyed 19"},
                     {"it.Keyed", "Plain keyed"},
                     {"it.Plain", "Schlicht"}});
    const struct {
        UINT id;
        std::string expected;
    } cases[] = {{300, "Keyed 19"}, {320, "Plain keyed"}, {301, "Schlicht"}};
    for (const auto& c : cases) {
        wchar_t wide[64] = {};
        EXPECT_EQ(LoadStringW(ThisModule(), c.id, wide, 64), static_cast<int>(c.expected.size()))
            << c.id;
        EXPECT_EQ(std::wstring(wide), std::wstring(c.expected.begin(), c.expected.end())) << c.id;
        char narrow[64] = {};
        EXPECT_EQ(LoadStringA(ThisModule(), c.id, narrow, 64), static_cast<int>(c.expected.size()))
            << c.id;
        EXPECT_EQ(std::string(narrow), c.expected) << c.id;
    }
    wchar_t source[64] = {};
    EXPECT_EQ(LoadStringNotTransW(ThisModule(), 300, source, 64), 8);
    EXPECT_EQ(std::wstring(source), L"it.Keyed");
}

// A string loaded again shows what the dictionary learnt meanwhile, and a
// buffer that cuts it gives the cut text its own lookup.
TEST_F(Interception, AStringLoadedAgainShowsWhatTheDictionaryLearntMeanwhile) {
    wchar_t wide[64] = {};
    ASSERT_EQ(LoadStringW(ThisModule(), 321, wide, 64), 8);
    EXPECT_EQ(std::wstring(wide), L"it.Later");
    AddTranslations({{"it.Later", "Spaeter"}, {"it.Lat", "Cut"}});
    for (int again = 0; again < 2; ++again) {
        EXPECT_EQ(LoadStringW(ThisModule(), 321, wide, 64), 7);
        EXPECT_EQ(std::wstring(wide), L"Spaeter");
    }
    EXPECT_EQ(LoadStringW(ThisModule(), 321, wide, 7), 3);
    EXPECT_EQ(std::wstring(wide), L"Cut");
}

// String 1 of a module translated as the dictionary has it for its file, as
// LoadStringW gives it and as its block, found and loaded by hand, holds
// it; the module is unloaded after.
struct ShownString {
    HMODULE module;
    std::wstring loaded;
    std::wstring served;
};

ShownString ShowString(const char* file, DWORD flags) {
    const HMODULE module = LoadLibraryExA(file, nullptr, flags);
    ShownString shown{module, {}, {}};
    wchar_t text[32] = {};
    LoadStringW(module, 1, text, 32);
    shown.loaded = text;
    // Entry 1 of block 1, behind the empty entry of string 0.
    const auto* block = static_cast<const WORD*>(
        LockResource(LoadResource(module, FindResourceW(module, MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(6)))));
    if (block != nullptr && block[0] == 0)
        shown.served.assign(reinterpret_cast<const wchar_t*>(block + 2), block[1]);
    FreeLibrary(module);
    return shown;
}

// What is remembered of a module by its address (the start of its keys, its
// records) is not taken for a module loaded there later: the loader's notice
// tells of a copy of the same headers, the headers tell of a module whose
// unload the loader does not announce (one loaded without its references
// resolved, whose records therefore stay).
TEST_F(Interception, AModuleLoadedWhereAnotherWasShowsItsOwnKeys) {
    const struct {
        const char* later;
        DWORD flags;
        bool servedByRecord;
    } cases[] = {{KT_PATCH_TWIN_FILE, 0, true}, {KT_PATCH_OTHER_FILE, DONT_RESOLVE_DLL_REFERENCES, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.later);
        // Both known before either is loaded: nothing tells the second from
        // the first but its name.
        AddTranslations({{(std::string(KT_PATCH_TARGET_FILE) + "#3#1pt.Text").c_str(), "First"},
                         {(std::string(c.later) + "#3#1pt.Text").c_str(), c.later}});
        const ShownString first = ShowString(KT_PATCH_TARGET_FILE, c.flags);
        const ShownString later = ShowString(c.later, c.flags);
        const std::string expected(c.later);
        EXPECT_EQ(first.loaded, L"First");
        EXPECT_EQ(later.loaded, std::wstring(expected.begin(), expected.end()));
        if (c.servedByRecord) {
            EXPECT_EQ(later.served, std::wstring(expected.begin(), expected.end()));
        }
        if (later.module != first.module)
            ADD_FAILURE() << "loaded at another address: nothing shown";
    }
}

TEST_F(Interception, StringsMissingOrTooLongForTheBuffer) {
    AddTranslations({{"it.S", "Translation"}});
    // In block 19, which holds others, and in block 63, which is not there.
    for (UINT missing : {297, 999}) {
        wchar_t wide[8] = L"xxxxxxx";
        EXPECT_EQ(LoadStringW(ThisModule(), missing, wide, 8), 0);
        EXPECT_EQ(wide[0], L'\0') << missing;
        char narrow[8] = "xxxxxxx";
        EXPECT_EQ(LoadStringA(ThisModule(), missing, narrow, 8), 0);
        EXPECT_EQ(narrow[0], '\0') << missing;
    }

    wchar_t cutWide[6];
    EXPECT_EQ(LoadStringW(ThisModule(), 302, cutWide, 6), 11);
    EXPECT_EQ(std::wstring(cutWide, 6), L"Transl");
    char cutNarrow[6];
    EXPECT_EQ(LoadStringA(ThisModule(), 302, cutNarrow, 6), 11);
    EXPECT_EQ(std::string(cutNarrow, 6), "Transl");
}

TEST_F(Interception, MenusPreferTheEntryKeyedByTheirNameOrNumber) {
    AddTranslations({{(Key(kSuppKindMenu, "300") + "it.MenuKeyed").c_str(), "Keyed 300"},
                     {(Key(kSuppKindMenu, "ITMENU") + "it.MenuKeyed").c_str(), "Keyed by name"},
                     {"it.MenuKeyed", "Plain"},
                     {"it.MenuPlain", "Menu plain"}});
    const struct {
        HMENU menu;
        const wchar_t* first;
    } cases[] = {
        {LoadMenuW(ThisModule(), MAKEINTRESOURCEW(300)), L"Keyed 300"},
        {LoadMenuA(ThisModule(), MAKEINTRESOURCEA(300)), L"Keyed 300"},
        {LoadMenuW(ThisModule(), L"ITMENU"), L"Keyed by name"},
        {LoadMenuA(ThisModule(), "ITMENU"), L"Keyed by name"},
    };
    for (const auto& c : cases) {
        ASSERT_NE(c.menu, nullptr);
        EXPECT_EQ(ItemText(c.menu, 0), c.first);
        EXPECT_EQ(ItemText(c.menu, 1), L"Menu plain");
        DestroyMenu(c.menu);
    }
}

TEST_F(Interception, DialogsAreFoundAsRecordsAndOtherTypesAndSwitchedOffCallsAsTheSystemHasThem) {
    const auto findReal = KT_SYSTEM("kernel32", FindResourceW);
    const auto* bitmapType = MAKEINTRESOURCEW(kResourceTypeBitmap);
    const auto* dialogType = MAKEINTRESOURCEW(kResourceTypeDialog);
    HRSRC bitmap = FindResourceW(ThisModule(), MAKEINTRESOURCEW(300), bitmapType);
    ASSERT_NE(bitmap, nullptr);
    EXPECT_EQ(bitmap, findReal(ThisModule(), MAKEINTRESOURCEW(300), bitmapType));
    HRSRC dialog = FindResourceW(ThisModule(), MAKEINTRESOURCEW(300), dialogType);
    ASSERT_TRUE(IsResourceRecord(dialog));
    EXPECT_EQ(reinterpret_cast<SuppResource*>(dialog)->real,
              findReal(ThisModule(), MAKEINTRESOURCEW(300), dialogType));

    const DWORD bitmapSize = KT_SYSTEM("kernel32", SizeofResource)(ThisModule(), bitmap);
    EXPECT_NE(bitmapSize, 0u);
    for (int enable : {1, 0}) {
        Supp_SetTranslationEnable(enable);
        EXPECT_EQ(SizeofResource(ThisModule(), bitmap), bitmapSize) << enable;
    }
    // The switch is off.
    const auto* dialogTypeA = MAKEINTRESOURCEA(kResourceTypeDialog);
    EXPECT_EQ(FindResourceExA(ThisModule(), dialogTypeA, MAKEINTRESOURCEA(300), 0),
              KT_SYSTEM("kernel32", FindResourceExA)(ThisModule(), dialogTypeA,
                                                     MAKEINTRESOURCEA(300), 0));
    // With the switch on, the Ex forms (type before name) make the dialog's record.
    Supp_SetTranslationEnable(1);
    for (HRSRC found : {FindResourceExA(ThisModule(), dialogTypeA, MAKEINTRESOURCEA(300), 0),
                        FindResourceExW(ThisModule(), dialogType, MAKEINTRESOURCEW(300), 0)}) {
        ASSERT_TRUE(IsResourceRecord(found));
        EXPECT_EQ(reinterpret_cast<SuppResource*>(found)->type, kResourceTypeDialog);
        EXPECT_EQ(reinterpret_cast<SuppResource*>(found)->real,
                  findReal(ThisModule(), MAKEINTRESOURCEW(300), dialogType));
    }
}

TEST_F(Interception, BlocksTheDictionaryDoesNotKnowAreServedAsTheModuleHasThem) {
    const struct {
        int name;
        std::uintptr_t type;
    } cases[] = {{23, kResourceTypeString}, {301, kResourceTypeDialog}};  // block 23 holds 352
    for (const auto& c : cases) {
        const auto* name = MAKEINTRESOURCEW(c.name);
        const auto* type = MAKEINTRESOURCEW(c.type);
        HRSRC served = FindResourceW(ThisModule(), name, type);
        ASSERT_NE(served, nullptr) << c.name;
        const DWORD size = SizeofResource(ThisModule(), served);
        const void* bytes = LockResource(LoadResource(ThisModule(), served));

        HRSRC real = KT_SYSTEM("kernel32", FindResourceW)(ThisModule(), name, type);
        const DWORD realSize = KT_SYSTEM("kernel32", SizeofResource)(ThisModule(), real);
        const void* realBytes = KT_SYSTEM(
            "kernel32", LockResource)(KT_SYSTEM("kernel32", LoadResource)(ThisModule(), real));
        ASSERT_EQ(size, realSize) << c.name;
        EXPECT_EQ(std::memcmp(bytes, realBytes, size), 0) << c.name;
    }
}

// What a message box showed.
struct Shown {
    std::string text;
    std::string caption;
};

// The message box of this thread, read and ended as soon as its
// initialization has set its texts.
class MessageBoxReader {
public:
    static Shown Read(const std::function<int()>& open) {
        shown = {};
        HHOOK hook =
            SetWindowsHookExA(WH_CALLWNDPROCRET, ReadAndEnd, nullptr, GetCurrentThreadId());
        EXPECT_EQ(open(), IDOK);
        UnhookWindowsHookEx(hook);
        return shown;
    }

private:
    static constexpr int kMessageTextId = 0xFFFF;

    static bool IsMessageBox(HWND window) {
        char className[16] = {};
        GetClassNameA(window, className, sizeof className);
        return std::strcmp(className, "#32770") == 0;
    }

    static LRESULT CALLBACK ReadAndEnd(int code, WPARAM sentByThisThread, LPARAM details) {
        const auto* call = reinterpret_cast<const CWPRETSTRUCT*>(details);
        if (code == HC_ACTION && call->message == WM_INITDIALOG && IsMessageBox(call->hwnd)) {
            shown = {TextOf(GetDlgItem(call->hwnd, kMessageTextId)), TextOf(call->hwnd)};
            EndDialog(call->hwnd, IDOK);
        }
        return CallNextHookEx(nullptr, code, sentByThisThread, details);
    }

    static Shown shown;
};

Shown MessageBoxReader::shown;

TEST_F(Interception, MessageBoxesTranslateTextAndCaptionByTheirPlainKeys) {
    AddTranslations({{"it.BoxMessage", "Nachricht"},
                     {"it.BoxCaption", "Titel"},
                     {"Error", "Fehler"},
                     {"it.BoxText", "Kastentext"}});
    MSGBOXPARAMSA byText = {};
    byText.cbSize = sizeof byText;
    byText.lpszText = "it.BoxMessage";
    byText.lpszCaption = "it.BoxCaption";
    byText.dwStyle = MB_OK;
    MSGBOXPARAMSA byId = byText;
    byId.hInstance = ThisModule();
    byId.lpszText = MAKEINTRESOURCEA(303);
    const struct {
        const char* call;
        std::function<int()> open;
        std::string text;
        std::string caption;
    } cases[] = {
        {"MessageBoxA",
         [] { return MessageBoxA(nullptr, "it.BoxMessage", "it.BoxCaption", MB_OK); }, "Nachricht",
         "Titel"},
        {"MessageBoxA without caption",
         [] { return MessageBoxA(nullptr, "it.BoxMessage", nullptr, MB_OK); }, "Nachricht",
         "Fehler"},
        {"MessageBoxExA",
         [] { return MessageBoxExA(nullptr, "it.BoxMessage", "it.BoxCaption", MB_OK, 0); },
         "Nachricht", "Titel"},
        {"MessageBoxIndirectA", [&] { return MessageBoxIndirectA(&byText); }, "Nachricht", "Titel"},
        {"MessageBoxIndirectA by id", [&] { return MessageBoxIndirectA(&byId); }, "Kastentext",
         "Titel"},
    };
    for (const auto& c : cases) {
        const Shown shown = MessageBoxReader::Read(c.open);
        EXPECT_EQ(shown.text, c.text) << c.call;
        EXPECT_EQ(shown.caption, c.caption) << c.call;
    }
}

// What a dialog showed as it opened; it ends at once with kDialogResult.
struct Opened {
    std::string caption;
    std::string label;
};
Opened opened;
constexpr INT_PTR kDialogResult = 42;
constexpr int kLabelId = 2;

INT_PTR CALLBACK ReadAndEnd(HWND dialog, UINT message, WPARAM, LPARAM) {
    if (message != WM_INITDIALOG)
        return FALSE;
    opened = {TextOf(dialog), TextOf(GetDlgItem(dialog, kLabelId))};
    EndDialog(dialog, kDialogResult);
    return TRUE;
}

TEST_F(Interception, DialogsOpenedByNameAreTranslatedWhileTheSwitchIsOn) {
    AddTranslations(
        {{"it.Dialog", "Dialogfenster"},
         {(Key(kSuppKindDialog, "300") + "it.DialogLabel").c_str(), "Beschriftung 300"}});
    EXPECT_EQ(DialogBoxParamW(ThisModule(), MAKEINTRESOURCEW(999), nullptr, ReadAndEnd, 0), 0);
    const struct {
        int enable;
        std::string caption;
        std::string label;
    } cases[] = {{1, "Dialogfenster", "Beschriftung 300"},
                 {0, "it.Dialog", "it.DialogLabel"},
                 {1, "Dialogfenster", "Beschriftung 300"}};
    for (const auto& c : cases) {
        Supp_SetTranslationEnable(c.enable);
        opened = {};
        EXPECT_EQ(DialogBoxParamA(ThisModule(), MAKEINTRESOURCEA(300), nullptr, ReadAndEnd, 0),
                  kDialogResult);
        EXPECT_EQ(opened.caption, c.caption) << c.enable;
        EXPECT_EQ(opened.label, c.label) << c.enable;
    }
}

}  // namespace
}  // namespace kt::test
