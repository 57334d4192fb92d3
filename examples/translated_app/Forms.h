// The forms module: a DLL with resources of its own that never asks for
// their translation. It hands out its dialog template for others to open.
#pragma once

#include <windows.h>

#if defined(ORDER_FORMS_BUILDING)
#    define FORMS_API extern "C" __declspec(dllexport)
#else
#    define FORMS_API extern "C" __declspec(dllimport)
#endif

// The template of the forms module's dialog `id`, from its own LoadResource.
FORMS_API LPCDLGTEMPLATEW Forms_Template(unsigned id);
// LoadStringW of the forms module's own string `id`.
FORMS_API int Forms_LoadString(unsigned id, wchar_t* buffer, int capacity);
