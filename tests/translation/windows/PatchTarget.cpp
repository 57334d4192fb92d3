// A module for the import patching tests to patch, load and unload: it
// imports one function of user32, none of those the library intercepts, and
// calls it for the tests.
#include <windows.h>

extern "C" __declspec(dllexport) BOOL IsCharAlphaThrough(WCHAR character) {
    return IsCharAlphaW(character);
}
