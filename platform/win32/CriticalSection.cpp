// The Win32 implementation of the recursive lock: a critical section.
#include "platform/CriticalSection.h"

#include <new>

#include <windows.h>

namespace kt::sys {

static_assert(sizeof(CRITICAL_SECTION) <= 64, "CriticalSection::storage is too small");
static_assert(alignof(CRITICAL_SECTION) <= 8, "CriticalSection::storage is not aligned enough");

static CRITICAL_SECTION* Native(unsigned char* storage) {
    return std::launder(reinterpret_cast<CRITICAL_SECTION*>(storage));
}

CriticalSection::CriticalSection() { InitializeCriticalSection(new (storage) CRITICAL_SECTION); }
CriticalSection::~CriticalSection() { DeleteCriticalSection(Native(storage)); }
void CriticalSection::Enter() { EnterCriticalSection(Native(storage)); }
void CriticalSection::Leave() { LeaveCriticalSection(Native(storage)); }

}  // namespace kt::sys
