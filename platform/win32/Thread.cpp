// Win32 threads from the C runtime's _beginthreadex, so that the runtime's
// per-thread state is set up for the start function.
#include "platform/Thread.h"

#include <windows.h>

#include <process.h>

namespace kt::sys {

NewThread StartSuspendedThread(ThreadStart start, void* arg) {
    unsigned id = 0;
    const uintptr_t handle = _beginthreadex(nullptr, 0, start, arg, CREATE_SUSPENDED, &id);
    return {reinterpret_cast<void*>(handle), id, nullptr};
}

void ResumeNewThread(const NewThread& thread) { ResumeThread(thread.handle); }

unsigned JoinThread(void* handle) {
    WaitForSingleObject(handle, INFINITE);
    DWORD result = 0;
    GetExitCodeThread(handle, &result);
    CloseHandle(handle);
    return result;
}

unsigned long CurrentProcessId() { return GetCurrentProcessId(); }
unsigned long CurrentThreadId() { return GetCurrentThreadId(); }

}  // namespace kt::sys
