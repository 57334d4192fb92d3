#include "Print.h"

#include "NotesIds.h"

namespace {

HMODULE Self() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&Self), &module);
    return module;
}

}  // namespace

extern "C" __declspec(dllexport) INT_PTR Print_DialogBox(HWND owner, DLGPROC procedure, LPARAM parameter) {
    return DialogBoxParamW(Self(), MAKEINTRESOURCEW(IDD_PRINT), owner, procedure, parameter);
}

extern "C" __declspec(dllexport) int Print_LoadString(unsigned id, wchar_t* buffer, int capacity) {
    return LoadStringW(Self(), id, buffer, capacity);
}
