// The POSIX shared lock: a robust, recursive, process-shared pthread mutex in
// a named block of shared memory. Robust is what gives the abandonment of a
// Win32 mutex: the kernel marks the lock when the thread that holds it ends,
// and the next taker learns so. The block outlives the processes that use it,
// and the next process to open the name takes it up again.
#include "platform/SharedMutex.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <string>
#include <thread>

#include "platform/posix/Deadline.h"

namespace kt::sys {

namespace {

struct SharedBlock {
    std::atomic<unsigned> ready;  // 1 once the maker has set up the mutex
    pthread_mutex_t mutex;
};
static_assert(std::atomic<unsigned>::is_always_lock_free, "the flag lies in shared memory");

// How long an opener waits for a maker in another process to finish.
constexpr auto kMakerPatience = std::chrono::seconds(2);
constexpr auto kMakerPoll = std::chrono::milliseconds(1);

void SetUp(SharedBlock* block) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    pthread_mutex_init(&block->mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    block->ready.store(1, std::memory_order_release);
}

// Waits until another process has given the block its size and set it up.
SharedBlock* MapWhenReady(int file) {
    const auto giveUp = std::chrono::steady_clock::now() + kMakerPatience;
    struct stat status = {};
    while (fstat(file, &status) == 0 && static_cast<size_t>(status.st_size) < sizeof(SharedBlock)) {
        if (std::chrono::steady_clock::now() > giveUp)
            return nullptr;
        std::this_thread::sleep_for(kMakerPoll);
    }
    void* view = mmap(nullptr, sizeof(SharedBlock), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (view == MAP_FAILED)
        return nullptr;
    auto* block = static_cast<SharedBlock*>(view);
    while (block->ready.load(std::memory_order_acquire) != 1) {
        if (std::chrono::steady_clock::now() > giveUp) {
            munmap(view, sizeof(SharedBlock));
            return nullptr;
        }
        std::this_thread::sleep_for(kMakerPoll);
    }
    return block;
}

SharedBlock* MakeBlock(int file) {
    if (ftruncate(file, sizeof(SharedBlock)) != 0)
        return nullptr;
    void* view = mmap(nullptr, sizeof(SharedBlock), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (view == MAP_FAILED)
        return nullptr;
    auto* block = static_cast<SharedBlock*>(view);
    SetUp(block);
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

SharedMutex* OpenSharedMutex(const char* name) {
    const std::string objectName = std::string("/") + name;
    SharedBlock* block = nullptr;
    int file = shm_open(objectName.c_str(), O_RDWR | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
    if (file >= 0) {
        block = MakeBlock(file);
    } else if (errno == EEXIST) {
        file = shm_open(objectName.c_str(), O_RDWR, 0);
        if (file >= 0)
            block = MapWhenReady(file);
    }
    if (file >= 0)
        close(file);
    return block == nullptr ? nullptr : new SharedMutex{block};
}

WaitOutcome WaitForSharedMutex(SharedMutex* mutex, DWORD timeoutMs) {
    const WaitOutcome outcome = Outcome(Lock(&mutex->block->mutex, timeoutMs));
    // The taker now holds it; marked consistent, it serves the next ones.
    if (outcome == WaitOutcome::Abandoned)
        pthread_mutex_consistent(&mutex->block->mutex);
    return outcome;
}

void ReleaseSharedMutex(SharedMutex* mutex) { pthread_mutex_unlock(&mutex->block->mutex); }

void CloseSharedMutex(SharedMutex* mutex) {
    munmap(mutex->block, sizeof(SharedBlock));
    delete mutex;
}

}  // namespace kt::sys
