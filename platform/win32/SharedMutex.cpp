// The Win32 shared lock: a named mutex, its handle standing for the object.
#include "platform/SharedMutex.h"

#include "platform/win32/WaitOutcome.h"

namespace kt::sys {

static HANDLE Handle(SharedMutex* mutex) { return reinterpret_cast<HANDLE>(mutex); }

SharedMutex* OpenSharedMutex(const char* name) {
    return reinterpret_cast<SharedMutex*>(CreateMutexA(nullptr, FALSE, name));
}

WaitOutcome WaitForSharedMutex(SharedMutex* mutex, DWORD timeoutMs) {
    return WaitForHandle(Handle(mutex), timeoutMs);
}

void ReleaseSharedMutex(SharedMutex* mutex) { ReleaseMutex(Handle(mutex)); }
void CloseSharedMutex(SharedMutex* mutex) { CloseHandle(Handle(mutex)); }

}  // namespace kt::sys
