// A recursive lock that every process reaches by one name, owned by a thread:
// a named Win32 mutex, or natively a robust process-shared pthread mutex in a
// named block of shared memory. When the thread that holds it ends (or its
// process dies), the next one to take it is told that it was abandoned.
#pragma once

#include "platform/WaitOutcome.h"

namespace kt::sys {

struct SharedMutex;

// Opens the lock of that name (natively within the sync namespace), making
// it, not held, if no process has it yet; null when the platform refuses.
SharedMutex* OpenSharedMutex(const char* name);

// Takes the lock within `timeoutMs` (kWaitForever for no limit); the thread
// that holds it already takes it again and must give it back once more.
WaitOutcome WaitForSharedMutex(SharedMutex* mutex, DWORD timeoutMs);

// Gives back one taking of the lock by the calling thread.
void ReleaseSharedMutex(SharedMutex* mutex);

// Closes this process's handle; the lock is gone with the last one. Natively
// the process keeps its mapping of the lock, which a later open takes up.
void CloseSharedMutex(SharedMutex* mutex);

}  // namespace kt::sys
