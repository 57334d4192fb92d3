// The result of WaitForSingleObject as a WaitOutcome.
#pragma once

#include <windows.h>

#include "platform/WaitOutcome.h"

namespace kt::sys {

inline WaitOutcome WaitForHandle(HANDLE handle, DWORD timeoutMs) {
    switch (WaitForSingleObject(handle, timeoutMs)) {
    case WAIT_OBJECT_0:
        return WaitOutcome::Signalled;
    case WAIT_TIMEOUT:
        return WaitOutcome::TimedOut;
    case WAIT_ABANDONED:
        return WaitOutcome::Abandoned;
    default:
        return WaitOutcome::Failed;
    }
}

}  // namespace kt::sys
