// The DLL's entry point. The runtime has built the library's static objects
// (the memory manager first of all) before it calls this, and destroys them
// after the detach call returns.
#include <windows.h>

#include "core/Library.h"
#include "kticore/translation/Interception.h"
#include "platform/Module.h"

namespace {

// A build of the library may export this to be told of its own load and
// unload, with the entry point's arguments.
constexpr char kModuleEntryHook[] = "_KTAfxDllMain";
using ModuleEntryHook = BOOL(WINAPI*)(HINSTANCE, DWORD, LPVOID);

void CallModuleEntryHook(HINSTANCE instance, DWORD reason) {
    if (void* hook = kt::sys::FindExport(instance, kModuleEntryHook))
        reinterpret_cast<ModuleEntryHook>(hook)(instance, reason, nullptr);
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        kt::OnLibraryLoad(instance);
        DisableThreadLibraryCalls(instance);
        // The library's own resource and message calls are translated too,
        // and the table of real functions is complete from here on.
        _InitResTranslation(instance);
        CallModuleEntryHook(instance, DLL_PROCESS_ATTACH);
    } else if (reason == DLL_PROCESS_DETACH) {
        CallModuleEntryHook(instance, DLL_PROCESS_DETACH);
    }
    return TRUE;
}
