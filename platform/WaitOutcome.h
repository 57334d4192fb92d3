// How a wait on a lock or an event of the platform ended.
#pragma once

#include "kticore/platform/Platform.h"

namespace kt::sys {

// A time-out that never ends (INFINITE).
constexpr DWORD kWaitForever = 0xFFFFFFFF;

enum class WaitOutcome {
    Signalled,  // the event was set, or the lock is now the caller's
    TimedOut,
    Abandoned,  // the lock is the caller's, but its owner ended holding it
    Failed,     // the wait itself went wrong
};

}  // namespace kt::sys
