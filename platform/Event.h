// An event of this process that clears itself when one wait has seen it set
// (an automatic-reset Win32 event, or natively a flag under a condition
// variable).
#pragma once

#include "platform/WaitOutcome.h"

namespace kt::sys {

struct Event;

// Null when the platform cannot make one.
Event* CreateAutoResetEvent(bool signalled);
void SignalEvent(Event* event);
void ClearEvent(Event* event);
// Signalled clears the event again; an event is never abandoned.
WaitOutcome WaitForEvent(Event* event, DWORD timeoutMs);
void CloseEvent(Event* event);

}  // namespace kt::sys
