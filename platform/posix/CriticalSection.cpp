// The POSIX implementation of the recursive lock: a recursive pthread mutex.
#include "platform/CriticalSection.h"

#include <pthread.h>

#include <new>

namespace kt::sys {

static_assert(sizeof(pthread_mutex_t) <= 64, "CriticalSection::storage is too small");
static_assert(alignof(pthread_mutex_t) <= 8, "CriticalSection::storage is not aligned enough");

static pthread_mutex_t* Native(unsigned char* storage) {
    return std::launder(reinterpret_cast<pthread_mutex_t*>(storage));
}

CriticalSection::CriticalSection() {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(new (storage) pthread_mutex_t, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

CriticalSection::~CriticalSection() { pthread_mutex_destroy(Native(storage)); }
void CriticalSection::Enter() { pthread_mutex_lock(Native(storage)); }
void CriticalSection::Leave() { pthread_mutex_unlock(Native(storage)); }

}  // namespace kt::sys
