// The Win32 event: an unnamed automatic-reset event, its handle standing for
// the object.
#include "platform/Event.h"

#include "platform/win32/WaitOutcome.h"

namespace kt::sys {

static HANDLE Handle(Event* event) { return reinterpret_cast<HANDLE>(event); }

Event* CreateAutoResetEvent(bool signalled) {
    return reinterpret_cast<Event*>(CreateEventA(nullptr, FALSE, signalled, nullptr));
}

void SignalEvent(Event* event) { SetEvent(Handle(event)); }
void ClearEvent(Event* event) { ResetEvent(Handle(event)); }
WaitOutcome WaitForEvent(Event* event, DWORD timeoutMs) { return WaitForHandle(Handle(event), timeoutMs); }
void CloseEvent(Event* event) { CloseHandle(Handle(event)); }

}  // namespace kt::sys
