// Interception of a module's resource and message functions. The library
// rewrites the import address table of a module in memory: where the loader
// bound, say, LoadStringW, the library's replacement stands instead, and the
// replacement passes the text through the dictionary. Modules that were not
// patched go on calling the system directly.
#pragma once

#include "kticore/platform/Platform.h"

#if defined(_WIN32)

extern "C" {

// Points each import address table entry of `module` that holds the address
// of `function` of `library` at `replacement`, whatever library the module
// named for it. The real address, or 0 when the library or the function is
// not there, the module is not a 64-bit image or an entry cannot be made
// writable. A null module patches nothing and gives a function that ignores
// its arguments and returns 0.
KTCORE_API void* HookProc_Install(HMODULE module, const char* library, const char* function, void* replacement);
// Changes nothing: with no replacement to look for, there is nothing to undo.
KTCORE_API void* HookProc_UnInstall(HMODULE module, const char* library, const char* function);

// Installs every interceptor in `module`, or takes them all out again; 1, or
// 0 for a null module.
KTCORE_API int _InitResTranslation(HMODULE module);
KTCORE_API int _DeInitResTranslation(HMODULE module);

// The untranslated string, as the system's LoadStringW and LoadStringA give
// it, whatever the translation switch says.
KTCORE_API int LoadStringNotTransW(HINSTANCE module, unsigned id, wchar_t* buffer, int capacity);
KTCORE_API int _LoadStringNotTrans(HINSTANCE module, unsigned id, char* buffer, int capacity);

// MessageBoxIndirectA (translated: the library's own calls are intercepted)
// for `wide` 0, else MessageBoxIndirectW; `params` is the matching
// MSGBOXPARAMS.
KTCORE_API int MessageBoxInternalA(void* params, int wide);

}  // extern "C"

// What each module that wants its resources translated calls for itself,
// with its own handle, once the dictionary is loaded: as _InitResTranslation.
KTCORE_API int Supp_InitResTranslation(HINSTANCE module);

#endif
