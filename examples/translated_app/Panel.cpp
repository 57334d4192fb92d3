#include "Panel.h"

#include "AppIds.h"
#include "kticore/translation/Interception.h"

namespace {
HINSTANCE panelModule = nullptr;
}

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        panelModule = module;
        // The one line of the panel that is there for translation.
        Supp_InitResTranslation(module);
    }
    return TRUE;
}

int Panel_LoadString(unsigned id, wchar_t* buffer, int capacity) {
    return LoadStringW(panelModule, id, buffer, capacity);
}

HMENU Panel_LoadMenu() { return LoadMenuW(panelModule, MAKEINTRESOURCEW(IDM_PANEL)); }

INT_PTR Panel_DialogBox(HWND owner, DLGPROC procedure, LPARAM parameter) {
    return DialogBoxParamW(panelModule, MAKEINTRESOURCEW(IDD_PANEL), owner, procedure, parameter);
}
