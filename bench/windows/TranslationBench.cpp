// Translation in a module that patched its own imports, the DLL under Wine:
// LoadStringW of a string the dictionary translates and of one it does not
// know, and opening and closing a dialog of 50 translated controls, each
// against the real function (its address from user32's exports) on the same
// resource in the same run.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/harness/TimingHarness.h"
#include "bench/windows/TranslationBenchIds.h"
#include "kticore/translation/Interception.h"
#include "kticore/translation/Translation.h"
#include "translation/Lookup.h"

namespace {

constexpr long kStringIterations = 200000;
constexpr long kDialogIterations = 40;
constexpr int kStringCapacity = 256;
constexpr unsigned kStringsPerBlock = 16;

// String KT_BENCH_STRING_TRANSLATED of the script, and its translation.
const std::string kSourceString = "Open the selected file";
const std::string kTranslation = "Die gewaehlte Datei oeffnen";

HMODULE ThisModule() { return GetModuleHandleW(nullptr); }

std::string KeyPrefix(unsigned id, unsigned kind) {
    char prefix[kKeyPrefixRoom] = {};
    Supp_MakeKeyA(ThisModule(), MAKEINTRESOURCEA(id), prefix, kind);
    return prefix;
}

std::string Pair(const std::string& key, const std::string& value) {
    return "\"" + key + "\"\n\"" + value + "\"\n";
}

// The translated string and every text of the dialog, under the keys of this
// executable's resources.
std::string Dictionary() {
    std::string wld =
        Pair(KeyPrefix(KT_BENCH_STRING_TRANSLATED / kStringsPerBlock + 1, kSuppKindString) +
                 kSourceString,
             kTranslation);
    const std::string dialog = KeyPrefix(KT_BENCH_DIALOG, kSuppKindDialog);
    for (int n = 0; n <= KT_BENCH_DIALOG_CONTROLS; ++n)
        wld += Pair(dialog + "Control text " + std::to_string(n),
                    "Steuerelement " + std::to_string(n));
    return wld;
}

// Loads the dictionary from a temporary file, removed again once read.
bool LoadDictionary() {
    wchar_t directory[MAX_PATH], path[MAX_PATH];
    if (GetTempPathW(MAX_PATH, directory) == 0 || GetTempFileNameW(directory, L"ktb", 0, path) == 0)
        return false;
    const std::string wld = Dictionary();
    std::FILE* file = _wfopen(path, L"wb");
    const bool written =
        file != nullptr && std::fwrite(wld.data(), 1, wld.size(), file) == wld.size();
    if (file != nullptr)
        std::fclose(file);
    const bool loaded = written && Supp_Init(path) == 1;
    DeleteFileW(path);
    return loaded;
}

using LoadStringFunction = int(WINAPI*)(HINSTANCE, UINT, LPWSTR, int);
using CreateDialogFunction = HWND(WINAPI*)(HINSTANCE, LPCWSTR, HWND, DLGPROC, LPARAM);

template <class Function>
Function RealUser32(const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("user32"), name)));
}

INT_PTR CALLBACK NoProcedure(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

// Opens the dialog, hands the text of `control` to `text` and closes it again,
// with whatever messages that left in the queue.
template <class Create>
void OpenAndClose(Create create, int control = 0, std::wstring* text = nullptr) {
    HWND dialog = create(ThisModule(), MAKEINTRESOURCEW(KT_BENCH_DIALOG), nullptr, NoProcedure, 0);
    if (dialog == nullptr) {
        std::fprintf(stderr, "the dialog did not open (error %lu)\n", GetLastError());
        std::exit(1);
    }
    if (text != nullptr) {
        wchar_t buffer[kStringCapacity] = {};
        GetWindowTextW(control == 0 ? dialog : GetDlgItem(dialog, control), buffer,
                       kStringCapacity);
        *text = buffer;
    }
    DestroyWindow(dialog);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}

// Stops the run when the patched path does not translate, or the real one
// does: the figures would compare the wrong things.
void Expect(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "not as expected: %s\n", what);
    std::exit(1);
}

void StringLoads(LoadStringFunction real) {
    wchar_t buffer[kStringCapacity];
    Expect(LoadStringW(ThisModule(), KT_BENCH_STRING_TRANSLATED, buffer, kStringCapacity) > 0 &&
               buffer == std::wstring(kTranslation.begin(), kTranslation.end()),
           "LoadStringW translates");
    Expect(real(ThisModule(), KT_BENCH_STRING_TRANSLATED, buffer, kStringCapacity) > 0 &&
               buffer == std::wstring(kSourceString.begin(), kSourceString.end()),
           "the real LoadStringW does not translate");

    const struct {
        const char* name;
        UINT id;
    } cases[] = {{"LoadStringW/translated", KT_BENCH_STRING_TRANSLATED},
                 {"LoadStringW/unknown", KT_BENCH_STRING_UNKNOWN}};
    for (const auto& loaded : cases) {
        const kt::bench::PairOfFigures figures = kt::bench::NanosecondsPerCallInTurn(
            [&] { LoadStringW(ThisModule(), loaded.id, buffer, kStringCapacity); },
            [&] { real(ThisModule(), loaded.id, buffer, kStringCapacity); }, kStringIterations);
        kt::bench::PrintRatio(loaded.name, "LoadStringW", figures.ours, figures.theirs);
    }
}

void DialogOpenings(CreateDialogFunction real) {
    const auto patched = [](HINSTANCE module, LPCWSTR name, HWND parent, DLGPROC procedure,
                            LPARAM param) {
        return CreateDialogParamW(module, name, parent, procedure, param);
    };
    for (int control : {0, KT_BENCH_DIALOG_CONTROLS}) {
        std::wstring translated, untranslated;
        OpenAndClose(patched, control, &translated);
        OpenAndClose(real, control, &untranslated);
        Expect(translated == L"Steuerelement " + std::to_wstring(control) &&
                   untranslated == L"Control text " + std::to_wstring(control),
               "the dialog is translated through the patched import alone");
    }

    const kt::bench::PairOfFigures figures = kt::bench::NanosecondsPerCallInTurn(
        [&] { OpenAndClose(patched); }, [&] { OpenAndClose(real); }, kDialogIterations);
    kt::bench::PrintRatio("CreateDialogParamW/50", "CreateDialogParamW", figures.ours,
                          figures.theirs);
}

}  // namespace

int main() {
    Expect(LoadDictionary(), "the dictionary loads");
    Expect(Supp_InitResTranslation(ThisModule()) == 1, "the executable's imports are patched");

    kt::bench::PrintRatioHeader();
    StringLoads(RealUser32<LoadStringFunction>("LoadStringW"));
    DialogOpenings(RealUser32<CreateDialogFunction>("CreateDialogParamW"));
    return 0;
}
