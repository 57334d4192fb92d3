#include "Forms.h"

namespace {
HINSTANCE formsModule = nullptr;
const LPCWSTR kDialogType = MAKEINTRESOURCEW(5);  // RT_DIALOG
}  // namespace

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH)
        formsModule = module;
    return TRUE;
}

LPCDLGTEMPLATEW Forms_Template(unsigned id) {
    HRSRC found = FindResourceW(formsModule, MAKEINTRESOURCEW(id), kDialogType);
    return static_cast<LPCDLGTEMPLATEW>(LockResource(LoadResource(formsModule, found)));
}

int Forms_LoadString(unsigned id, wchar_t* buffer, int capacity) {
    return LoadStringW(formsModule, id, buffer, capacity);
}
