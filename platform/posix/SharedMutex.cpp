// The POSIX shared lock: a robust, recursive, process-shared pthread mutex in
// a named block of shared memory. Robust is what gives the abandonment of a
// Win32 mutex: the kernel marks the lock when the thread that holds it ends,
// and the next taker learns so. The block outlives the processes that use it,
// and the next process to open the name takes it up again.
#include "platform/SharedMutex.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <mutex>
#include <string>

#include "platform/posix/Deadline.h"
#include "platform/posix/SyncNames.h"

namespace kt::sys {

namespace {

// Set last, once the mutex in the block is ready; a block without it was
// left half-made by a maker that died, and is set up again.
constexpr unsigned kReadyMark = 0x4B544D58;

struct SharedBlock {
    unsigned ready;
    pthread_mutex_t mutex;
};

void SetUp(SharedBlock* block) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    pthread_mutex_init(&block->mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    block->ready = kReadyMark;
}

int TakeFileLock(int file) {
    int result;
    while ((result = flock(file, LOCK_EX)) != 0 && errno == EINTR) {
    }
    return result;
}

// Maps the block, giving it its size and setting it up if no process has
// finished that yet. The file lock keeps other openers out meanwhile, and
// goes with its holder if that dies.
SharedBlock* MapAndSetUp(int file) {
    if (TakeFileLock(file) != 0)
        return nullptr;
    SharedBlock* block = nullptr;
    struct stat status = {};
    const bool sized = fstat(file, &status) == 0 &&
                       (static_cast<size_t>(status.st_size) >= sizeof(SharedBlock) ||
                        ftruncate(file, sizeof(SharedBlock)) == 0);
    if (sized) {
        void* view = mmap(nullptr, sizeof(SharedBlock), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        if (view != MAP_FAILED) {
            block = static_cast<SharedBlock*>(view);
            if (block->ready != kReadyMark)
                SetUp(block);
        }
    }
    flock(file, LOCK_UN);
    return block;
}

WaitOutcome Outcome(int result) {
    switch (result) {
    case 0:
        return WaitOutcome::Signalled;
    case EBUSY:
    case ETIMEDOUT:
        return WaitOutcome::TimedOut;
    case EOWNERDEAD:
        return WaitOutcome::Abandoned;
    default:
        return WaitOutcome::Failed;
    }
}

int Lock(pthread_mutex_t* mutex, DWORD timeoutMs) {
    if (timeoutMs == 0)
        return pthread_mutex_trylock(mutex);
    if (timeoutMs == kWaitForever)
        return pthread_mutex_lock(mutex);
    const timespec deadline = MonotonicDeadline(timeoutMs);
    return pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &deadline);
}

}  // namespace

struct SharedMutex {
    SharedBlock* block;
};

// A block stays mapped for the life of the process: unmapped while a thread
// holds the lock, the kernel could not mark it abandoned when that thread
// ends, and every process would wait for it for good.
SharedMutex* OpenSharedMutex(const char* name) {
    static std::mutex openedLock;
    static std::map<std::string, SharedMutex> opened;
    const std::string objectName = SyncName(name);
    std::lock_guard<std::mutex> held(openedLock);
    const auto known = opened.find(objectName);
    if (known != opened.end())
        return &known->second;
    const int file = shm_open(objectName.c_str(), O_RDWR | O_CREAT, S_IRUSR | S_IWUSR);
    if (file < 0)
        return nullptr;
    SharedBlock* block = MapAndSetUp(file);
    close(file);
    if (block == nullptr)
        return nullptr;
    return &opened.emplace(objectName, SharedMutex{block}).first->second;
}

WaitOutcome WaitForSharedMutex(SharedMutex* mutex, DWORD timeoutMs) {
    const WaitOutcome outcome = Outcome(Lock(&mutex->block->mutex, timeoutMs));
    // The taker now holds it; marked consistent, it serves the next ones.
    if (outcome == WaitOutcome::Abandoned)
        pthread_mutex_consistent(&mutex->block->mutex);
    return outcome;
}

void ReleaseSharedMutex(SharedMutex* mutex) { pthread_mutex_unlock(&mutex->block->mutex); }

// The mapping stays (see OpenSharedMutex); the next opener gets it again.
void CloseSharedMutex(SharedMutex*) {}

}  // namespace kt::sys
