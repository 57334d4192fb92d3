// A platform wait's outcome as the result the interface promises: 1 in every
// case but a time-out or an abandoned lock.
#pragma once

#include "kticore/core/Threads.h"
#include "platform/WaitOutcome.h"

namespace kt {

inline int WaitResultOf(sys::WaitOutcome outcome) {
    switch (outcome) {
    case sys::WaitOutcome::TimedOut:
        return KTWAIT_TIMEOUT;
    case sys::WaitOutcome::Abandoned:
        return KTWAIT_ABANDONED;
    default:
        return KTWAIT_SIGNALLED;
    }
}

}  // namespace kt
