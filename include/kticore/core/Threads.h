// Locks, events and a thread start for host modules. Every critical section
// of the library also takes one mutex that all processes share by name, so
// only one thread of all of them is inside any section at a time, and
// Wait_All lets one thread hold them all at once. The library itself uses
// none of this.
#pragma once

#include "kticore/core/Unknown.h"

// Results of IEvent::Wait and Wait_All.
enum KTWaitResult : int {
    KTWAIT_SIGNALLED = 1,  // set, taken; also "nothing to wait for"
    KTWAIT_TIMEOUT = 2,
    KTWAIT_ABANDONED = 3,  // taken, but its last owner ended holding it
};

// A time-out that never ends.
constexpr DWORD KTWAIT_INFINITE = 0xFFFFFFFF;

// A recursive lock: the thread inside may enter again, and leaves as often.
// QueryInterface answers for nothing.
struct ICritSect : IKTUnknown {
    virtual void Enter() = 0;
    virtual void Leave() = 0;

protected:
    ~ICritSect() = default;
};

// An event that clears itself when a wait has seen it set. QueryInterface
// answers for nothing.
struct IEvent : IKTUnknown {
    virtual void Set() = 0;
    virtual void Reset() = 0;
    // A KTWaitResult: signalled or timed out.
    virtual int Wait(DWORD timeoutMs) = 0;

protected:
    ~IEvent() = default;
};

// A new critical section with one reference. The first one alive in the
// process opens the shared mutex, the last one closes it.
KTCORE_API ICritSect* CriticalSection_New();

// With a null `memory`, stores the bytes a critical section needs in *size
// and makes nothing. Otherwise builds one in `memory` (aligned as a pointer:
// 8 bytes is what the platform's critical section needs; owned by the caller,
// who frees it after the last Release), before any allocator need be usable.
// CXException XE_BAD_ARGUMENT for a null `size` with null `memory`, or memory
// that is not aligned.
KTCORE_API ICritSect* _CriticalSection_New_For_Core(void* memory, int* size);

// An automatic-reset event, set if `initialState` is nonzero; CXMemException
// when the platform cannot make one.
KTCORE_API IEvent* Event_New(int initialState);

// Takes the shared mutex, so that no other thread enters any critical section
// until Wait_Release; a time-out of -1 waits without limit. KTWAIT_SIGNALLED
// also when no critical section exists: then nothing is held.
KTCORE_API int Wait_All(int timeoutMs);
KTCORE_API void Wait_Release();

// The name of a kernel object for `name` in this process and the thread
// `threadId` (0: the calling thread); equal inputs give equal text. `dest`
// must hold 256 bytes; the ids come first, so a text cut to fit keeps them.
KTCORE_API void KTCreateObjName(const char* name, char* dest, unsigned long threadId);

// Starts start(arg) on a new thread and waits up to a second for it to say
// that it is up: the thread builds KTCreateObjName(name, buffer, 0) and sets
// the event of that name (OpenEventA, SetEvent; natively the POSIX named
// semaphore of that name: sem_open, sem_post; the name is a semaphore's,
// within the namespace of KTCORE_SYNC_NAMESPACE). A thread that doesn't is no
// failure. Returns the thread's handle, which the caller owns (natively the
// pthread_t, to be joined or detached), null when no thread could be made;
// stores its id in *threadId if that is not null (0 when there is none).
KTCORE_API void* KTCreateThread(const char* name, unsigned (*start)(void*), void* arg,
                                unsigned long* threadId);
