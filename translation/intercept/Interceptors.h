// The replacements of the intercepted functions, each with the signature of
// the function it stands in for (the platform's own declaration), named
// after it.
#pragma once

#include "platform/win32/RealFunctions.h"

namespace kt::intercept {

#define KT_DECLARE_REPLACEMENT(library, name) decltype(::name) name;
KT_INTERCEPTED_FUNCTIONS(KT_DECLARE_REPLACEMENT)
#undef KT_DECLARE_REPLACEMENT

}  // namespace kt::intercept
