#include "platform/TickCount.h"

#include <chrono>

namespace kt::sys {

// Milliseconds of the monotonic clock, wrapped to 32 bits as on Windows.
DWORD TickCount() {
    const auto elapsed = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<DWORD>(
        std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count());
}

}  // namespace kt::sys
