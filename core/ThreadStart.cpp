// A thread start in which the creator waits, up to a second, for the new
// thread to say that it is up, through an event named after the thread.
#include <cstdio>
#include <string>

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
    // The ids first, so that a name cut to fit still tells threads apart. A
    // null name is the empty one, for the creator and the thread alike.
    char ids[48];
    std::snprintf(ids, sizeof ids, "%lu.%lu.", kt::sys::CurrentProcessId(), threadId);
    kt::sys::NameStartSignal((ids + std::string(name != nullptr ? name : "")).c_str(), dest,
                             kObjectNameSize);
}

void* KTCreateThread(const char* name, unsigned (*start)(void*), void* arg, unsigned long* threadId) {
    const kt::sys::NewThread thread = kt::sys::StartSuspendedThread(start, arg);
    if (thread.handle == nullptr) {
        if (threadId != nullptr)
            *threadId = 0;
        return nullptr;
    }
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
