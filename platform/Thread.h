// Threads: a start that holds the new thread until its creator lets it run,
// and the ids that name threads and processes.
#pragma once

#include "kticore/platform/Platform.h"

namespace kt::sys {

using ThreadStart = unsigned (*)(void*);

struct NewThread {
    // What the caller owns: a Win32 thread handle, natively the pthread_t.
    // Null when no thread could be made.
    void* handle;
    unsigned long id;
    void* held;  // what the platform keeps until ResumeNewThread
};

// A thread that will run `start(arg)` once ResumeNewThread lets it.
NewThread StartSuspendedThread(ThreadStart start, void* arg);
void ResumeNewThread(const NewThread& thread);

// Waits for the thread of a handle from StartSuspendedThread to end, and
// gives the handle back; the result of its start function.
unsigned JoinThread(void* handle);

unsigned long CurrentProcessId();
unsigned long CurrentThreadId();

}  // namespace kt::sys
