// The POSIX start signal: a named semaphore, which one post raises.
#include "platform/StartSignal.h"

#include <fcntl.h>
#include <semaphore.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "platform/posix/Deadline.h"
#include "platform/posix/SyncNames.h"

namespace kt::sys {

void NameStartSignal(const char* text, char* dest, size_t size) {
    std::snprintf(dest, size, "%s", SyncName(text).c_str());
}

struct StartSignal {
    sem_t* semaphore;
    std::string name;
};

StartSignal* CreateStartSignal(const char* name) {
    // A semaphore left by a process that died waiting must not answer for
    // this thread.
    sem_unlink(name);
    sem_t* semaphore = sem_open(name, O_CREAT | O_EXCL, S_IRUSR | S_IWUSR, 0);
    if (semaphore == SEM_FAILED)
        return nullptr;
    return new StartSignal{semaphore, name};
}

static int Wait(sem_t* semaphore, DWORD timeoutMs) {
    if (timeoutMs == 0)
        return sem_trywait(semaphore);
    if (timeoutMs == kWaitForever)
        return sem_wait(semaphore);
    const timespec deadline = MonotonicDeadline(timeoutMs);
    return sem_clockwait(semaphore, CLOCK_MONOTONIC, &deadline);
}

WaitOutcome WaitForStartSignal(StartSignal* signal, DWORD timeoutMs) {
    int result;
    while ((result = Wait(signal->semaphore, timeoutMs)) != 0 && errno == EINTR) {
    }
    if (result == 0)
        return WaitOutcome::Signalled;
    return errno == ETIMEDOUT || errno == EAGAIN ? WaitOutcome::TimedOut : WaitOutcome::Failed;
}

void CloseStartSignal(StartSignal* signal) {
    sem_close(signal->semaphore);
    sem_unlink(signal->name.c_str());
    delete signal;
}

}  // namespace kt::sys
