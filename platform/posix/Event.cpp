// The POSIX event: a flag under a condition variable.
#include "platform/Event.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>

namespace kt::sys {

struct Event {
    std::mutex lock;
    std::condition_variable changed;
    bool signalled;
};

Event* CreateAutoResetEvent(bool signalled) { return new (std::nothrow) Event{{}, {}, signalled}; }

void SignalEvent(Event* event) {
    {
        std::lock_guard<std::mutex> held(event->lock);
        event->signalled = true;
    }
    event->changed.notify_one();
}

void ClearEvent(Event* event) {
    std::lock_guard<std::mutex> held(event->lock);
    event->signalled = false;
}

WaitOutcome WaitForEvent(Event* event, DWORD timeoutMs) {
    std::unique_lock<std::mutex> held(event->lock);
    const auto isSet = [event] { return event->signalled; };
    if (timeoutMs == kWaitForever)
        event->changed.wait(held, isSet);
    else if (!event->changed.wait_for(held, std::chrono::milliseconds(timeoutMs), isSet))
        return WaitOutcome::TimedOut;
    event->signalled = false;
    return WaitOutcome::Signalled;
}

void CloseEvent(Event* event) { delete event; }

}  // namespace kt::sys
