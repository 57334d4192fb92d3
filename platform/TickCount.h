// A millisecond count that moves on between calls, for names that must not
// repeat (GetTickCount).
#pragma once

#include "kticore/platform/Platform.h"

namespace kt::sys {

DWORD TickCount();

}  // namespace kt::sys
