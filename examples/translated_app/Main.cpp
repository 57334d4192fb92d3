// An application with resources of its own and a panel module with its own,
// both translated from the dictionary beside the executable
// (translated_app.wld and its layout twin translated_app.dlg) without a
// change to their resources or their UI code; and a forms module that never
// asks for translation.
//
//   translated_app                         the main dialog, modal
//   translated_app --snapshot PNG          the main dialog saved as PNG, its
//                                          texts printed
//   translated_app --probe REPORT          see Probe.h
//   translated_app --stress SECONDS REPORT see Probe.h
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string>

#include "AppIds.h"
#include "MainDialog.h"
#include "Probe.h"
#include "Snapshot.h"
#include "kticore/translation/Interception.h"
#include "kticore/translation/Translation.h"

namespace {

std::wstring DictionaryBesideExecutable() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring dictionary(path);
    return dictionary.substr(0, dictionary.find_last_of(L'.')) + L".wld";
}

int Usage() {
    std::fputs("usage: translated_app [--snapshot PNG | --probe REPORT | --stress SECONDS REPORT]\n", stderr);
    return 2;
}

int Run(int count, wchar_t** arguments) {
    // Without a dictionary file the application runs untranslated.
    Supp_Init(DictionaryBesideExecutable().c_str());
    Supp_InitResTranslation(GetModuleHandleW(nullptr));

    const wchar_t* mode = count > 1 ? arguments[1] : L"";
    if (count == 1)
        return static_cast<int>(
            DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_MAIN), nullptr, MainDialogProc, 0) == -1);
    if (count == 3 && std::wcscmp(mode, L"--snapshot") == 0)
        return RunSnapshot(arguments[2]);
    if (count == 3 && std::wcscmp(mode, L"--probe") == 0)
        return RunProbe(arguments[2]);
    if (count == 4 && std::wcscmp(mode, L"--stress") == 0)
        return RunStress(std::wcstol(arguments[2], nullptr, 10), arguments[3]);
    return Usage();
}

}  // namespace

int main() {
    int count = 0;
    wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    const int result = Run(count, arguments);
    LocalFree(arguments);
    return result;
}
