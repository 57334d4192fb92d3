// The replacements of the intercepted functions, each with the signature of
// the function it stands in for (the platform's own declaration), named
// after it.
#pragma once

#include "platform/win32/RealFunctions.h"

namespace kt::intercept {

#define KT_DECLARE_REPLACEMENT(library, name) decltype(::name) name;
KT_INTERCEPTED_FUNCTIONS(KT_DECLARE_REPLACEMENT)
#undef KT_DECLARE_REPLACEMENT

// An interceptor raises no exception into the module that called it: when
// a translation step runs out of memory, the caller gets `untranslated()`,
// what it would have had from the system. Only the library's own steps are
// guarded, never a call that runs the host's code, such as a dialog's
// procedure.
template <class Step, class Untranslated>
auto OrUntranslated(Step&& step, Untranslated&& untranslated) noexcept -> decltype(step()) {
    try {
        return step();
    } catch (...) {
        return untranslated();
    }
}

}  // namespace kt::intercept
