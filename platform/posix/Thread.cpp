// POSIX threads. pthreads has no suspended start: the new thread reports its
// kernel id and then waits until its creator lets it run.
#include "platform/Thread.h"

#include <pthread.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace kt::sys {

namespace {

struct Held {
    Held(ThreadStart start, void* arg) : start(start), arg(arg) {}

    ThreadStart start;
    void* arg;
    std::mutex lock;
    std::condition_variable changed;
    unsigned long id = 0;
    bool resumed = false;
};

void* Run(void* argument) {
    auto* held = static_cast<Held*>(argument);
    {
        std::unique_lock<std::mutex> locked(held->lock);
        held->id = static_cast<unsigned long>(gettid());
        held->changed.notify_all();
        held->changed.wait(locked, [held] { return held->resumed; });
    }
    const ThreadStart start = held->start;
    void* const arg = held->arg;
    delete held;
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(start(arg)));
}

}  // namespace

static_assert(sizeof(pthread_t) <= sizeof(void*), "a pthread_t stands for the thread handle");

NewThread StartSuspendedThread(ThreadStart start, void* arg) {
    auto* held = new Held(start, arg);
    pthread_t thread;
    if (pthread_create(&thread, nullptr, Run, held) != 0) {
        delete held;
        return {nullptr, 0, nullptr};
    }
    std::unique_lock<std::mutex> locked(held->lock);
    held->changed.wait(locked, [held] { return held->id != 0; });
    return {reinterpret_cast<void*>(thread), held->id, held};
}

void ResumeNewThread(const NewThread& thread) {
    auto* held = static_cast<Held*>(thread.held);
    // Under the lock: once it is given back, the thread may free `held`.
    std::lock_guard<std::mutex> locked(held->lock);
    held->resumed = true;
    held->changed.notify_all();
}

unsigned JoinThread(void* handle) {
    void* result = nullptr;
    pthread_join(reinterpret_cast<pthread_t>(handle), &result);
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(result));
}

unsigned long CurrentProcessId() { return static_cast<unsigned long>(getpid()); }
unsigned long CurrentThreadId() { return static_cast<unsigned long>(gettid()); }

}  // namespace kt::sys
