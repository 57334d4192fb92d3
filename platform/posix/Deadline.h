// The moment of the monotonic clock a time-out in milliseconds ends at, for
// the waits that take a deadline.
#pragma once

#include <time.h>

#include "kticore/platform/Platform.h"

namespace kt::sys {

inline timespec MonotonicDeadline(DWORD timeoutMs) {
    constexpr long kNanosecondsPerSecond = 1000000000;
    timespec deadline = {};
    clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += timeoutMs / 1000;
    deadline.tv_nsec += static_cast<long>(timeoutMs % 1000) * 1000000;
    if (deadline.tv_nsec >= kNanosecondsPerSecond) {
        deadline.tv_sec += 1;
        deadline.tv_nsec -= kNanosecondsPerSecond;
    }
    return deadline;
}

}  // namespace kt::sys
