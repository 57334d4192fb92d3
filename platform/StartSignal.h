// The named signal by which a new thread tells its creator that it is up: a
// named manual-reset Win32 event, or natively a POSIX named semaphore. Either
// is found by the name alone, so a host's thread can raise it with the
// platform's own calls (OpenEventA and SetEvent; sem_open and sem_post).
#pragma once

#include "platform/WaitOutcome.h"

namespace kt::sys {

struct StartSignal;

// What every object name begins with: natively a semaphore's name is "/"
// and one component.
extern const char kObjectNamePrefix[];

// Makes the signal of that name, not raised; null when it cannot be made.
StartSignal* CreateStartSignal(const char* name);
// Signalled once the signal has been raised, at once if it was before.
WaitOutcome WaitForStartSignal(StartSignal* signal, DWORD timeoutMs);
// Removes the signal: a thread that raises it later finds nothing.
void CloseStartSignal(StartSignal* signal);

// The new thread's side: raises the signal of that name; false when there
// is none (its creator no longer waits).
bool RaiseStartSignal(const char* name);

}  // namespace kt::sys
