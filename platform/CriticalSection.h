// A recursive lock for one process: a Win32 critical section, or a recursive
// pthread mutex. The same thread may enter it again while it holds it.
#pragma once

namespace kt::sys {

class CriticalSection {
public:
    CriticalSection();
    ~CriticalSection();
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

    void Enter();
    void Leave();

private:
    // Room for CRITICAL_SECTION (40 bytes on Win64) or pthread_mutex_t (40 on
    // x86-64 Linux) without pulling system headers into every user. Both are
    // made of pointers, longs and ints: 8-byte alignment is all they need.
    alignas(8) unsigned char storage[64];
};

// Holds a critical section for the life of a scope, also while an exception
// leaves it.
class ScopedLock {
public:
    explicit ScopedLock(CriticalSection& lock) : lock(lock) { lock.Enter(); }
    ~ScopedLock() { lock.Leave(); }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    CriticalSection& lock;
};

}  // namespace kt::sys
