// The named signal by which a new thread tells its creator that it is up: a
// named manual-reset Win32 event, or natively a POSIX named semaphore. Either
// is found by the name alone, so a host's thread raises it with the
// platform's own calls (OpenEventA and SetEvent; sem_open and sem_post).
#pragma once

#include <cstddef>

#include "platform/WaitOutcome.h"

namespace kt::sys {

struct StartSignal;

// The signal's name for `text` in `dest` of `size` bytes: on Win32 the text,
// cut to fit; natively a semaphore's name ("/" and one component) within the
// process's sync namespace, a long text folded to a fixed size.
void NameStartSignal(const char* text, char* dest, size_t size);

// Makes the signal of that name, not raised; null when it cannot be made.
StartSignal* CreateStartSignal(const char* name);
// Signalled once the signal has been raised, at once if it was before.
WaitOutcome WaitForStartSignal(StartSignal* signal, DWORD timeoutMs);
// Removes the signal: a thread that raises it later finds nothing.
void CloseStartSignal(StartSignal* signal);

}  // namespace kt::sys
