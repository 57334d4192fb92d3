// The Win32 start signal: a named manual-reset event.
#include "platform/StartSignal.h"

#include "platform/win32/WaitOutcome.h"

namespace kt::sys {

const char kObjectNamePrefix[] = "";

static HANDLE Handle(StartSignal* signal) { return reinterpret_cast<HANDLE>(signal); }

StartSignal* CreateStartSignal(const char* name) {
    return reinterpret_cast<StartSignal*>(CreateEventA(nullptr, TRUE, FALSE, name));
}

WaitOutcome WaitForStartSignal(StartSignal* signal, DWORD timeoutMs) {
    return WaitForHandle(Handle(signal), timeoutMs);
}

void CloseStartSignal(StartSignal* signal) { CloseHandle(Handle(signal)); }

bool RaiseStartSignal(const char* name) {
    const HANDLE event = OpenEventA(EVENT_MODIFY_STATE, FALSE, name);
    if (event == nullptr)
        return false;
    const bool raised = SetEvent(event) != FALSE;
    CloseHandle(event);
    return raised;
}

}  // namespace kt::sys
