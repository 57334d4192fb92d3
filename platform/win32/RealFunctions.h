// The functions whose import entries the library rewrites in a module, and
// the real address of each. A replacement, and the library wherever it needs
// the system's own behaviour, calls the real function through this table:
// once the library's own imports are rewritten, calling by name would reach
// the replacement again.
#pragma once

#include <windows.h>

// In the order of installation, each with the library that exports it.
#define KT_INTERCEPTED_FUNCTIONS(X)   \
    X("user32", LoadStringA)          \
    X("user32", LoadStringW)          \
    X("user32", LoadMenuIndirectA)    \
    X("user32", LoadMenuA)            \
    X("user32", LoadMenuW)            \
    X("kernel32", LoadResource)       \
    X("kernel32", FindResourceA)      \
    X("kernel32", FindResourceExA)    \
    X("kernel32", FindResourceW)      \
    X("kernel32", FindResourceExW)    \
    X("kernel32", LockResource)       \
    X("kernel32", FreeResource)       \
    X("kernel32", SizeofResource)     \
    X("user32", CreateDialogParamA)   \
    X("user32", CreateDialogParamW)   \
    X("user32", DialogBoxParamA)      \
    X("user32", DialogBoxParamW)      \
    X("user32", MessageBoxIndirectA)  \
    X("user32", MessageBoxA)          \
    X("user32", MessageBoxExA)        \
    X("user32", DialogBoxIndirectParamA)    \
    X("user32", DialogBoxIndirectParamW)    \
    X("user32", CreateDialogIndirectParamA) \
    X("user32", CreateDialogIndirectParamW)

namespace kt::sys {

// One pointer for each intercepted function, null until first installed.
struct RealFunctions {
#define KT_REAL_FUNCTION_POINTER(library, name) decltype(&::name) name;
    KT_INTERCEPTED_FUNCTIONS(KT_REAL_FUNCTION_POINTER)
#undef KT_REAL_FUNCTION_POINTER
};

extern RealFunctions realFunctions;

template <class Function>
Function SavedOrImported(Function saved, Function imported) {
    return saved != nullptr ? saved : imported;
}

}  // namespace kt::sys

// The real function: the saved address, or the caller's import before any
// installation has saved one.
#define KT_REAL(name) (::kt::sys::SavedOrImported(::kt::sys::realFunctions.name, &::name))
