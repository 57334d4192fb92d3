// The DLL's entry point. The runtime has built the library's static objects
// (the memory manager first of all) before it calls this, and destroys them
// after the detach call returns.
#include <windows.h>

#include "core/Library.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        DisableThreadLibraryCalls(instance);
        kt::OnLibraryLoad(instance);
    }
    return TRUE;
}
