// A thread start in which the creator waits, up to a second, for the new
// thread to say that it is up, through an event named after the thread.
#include <cstdio>

#include "kticore/core/Threads.h"
#include "platform/StartSignal.h"
#include "platform/Thread.h"

namespace {

constexpr size_t kObjectNameSize = 256;
constexpr DWORD kStartPatienceMs = 1000;

}  // namespace

void KTCreateObjName(const char* name, char* dest, unsigned long threadId) {
    if (threadId == 0)
        threadId = kt::sys::CurrentThreadId();
    std::snprintf(dest, kObjectNameSize, "%s%s.%lu.%lu", kt::sys::kObjectNamePrefix, name,
                  kt::sys::CurrentProcessId(), threadId);
}

void* KTCreateThread(const char* name, unsigned (*start)(void*), void* arg, unsigned long* threadId) {
    const kt::sys::NewThread thread = kt::sys::StartSuspendedThread(start, arg);
    if (thread.handle == nullptr)
        return nullptr;
    char objectName[kObjectNameSize];
    KTCreateObjName(name, objectName, thread.id);
    kt::sys::StartSignal* started = kt::sys::CreateStartSignal(objectName);
    kt::sys::ResumeNewThread(thread);
    // A thread that never answers costs its creator the second, nothing more.
    if (started != nullptr) {
        kt::sys::WaitForStartSignal(started, kStartPatienceMs);
        kt::sys::CloseStartSignal(started);
    }
    if (threadId != nullptr)
        *threadId = thread.id;
    return thread.handle;
}
