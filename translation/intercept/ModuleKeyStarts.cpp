#include "translation/intercept/ModuleKeyStarts.h"

#include <winternl.h>

#include <atomic>
#include <cstdint>
#include <mutex>

#include "platform/CriticalSection.h"

namespace kt {
namespace {

// One place for each module, by its base address; a module whose place is
// taken is read each time, as without the memory.
constexpr std::uintptr_t kSlots = 64;
constexpr unsigned kModuleAlignmentBits = 16;  // bases are 64 KiB aligned

// A remembered start under a sequence count: readers take no lock, and a
// reader that met a writer, or an odd count, reads the module's name itself.
struct Slot {
    std::atomic<unsigned> sequence{0};
    std::atomic<HMODULE> module{nullptr};
    std::atomic<DWORD> hash{0};
    std::atomic<size_t> length{0};
};

Slot slots[kSlots];
sys::CriticalSection writing;

Slot& SlotOf(const void* base) {
    return slots[(reinterpret_cast<std::uintptr_t>(base) >> kModuleAlignmentBits) % kSlots];
}

bool Read(const Slot& slot, HMODULE module, HashedText& start) {
    const unsigned sequence = slot.sequence.load(std::memory_order_acquire);
    if (sequence % 2 != 0)
        return false;
    const HMODULE held = slot.module.load(std::memory_order_relaxed);
    const HashedText read = {slot.hash.load(std::memory_order_relaxed), slot.length.load(std::memory_order_relaxed)};
    std::atomic_thread_fence(std::memory_order_acquire);
    if (held != module || slot.sequence.load(std::memory_order_relaxed) != sequence)
        return false;
    start = read;
    return true;
}

void Write(Slot& slot, HMODULE module, HashedText start) {
    sys::ScopedLock hold(writing);
    const unsigned sequence = slot.sequence.load(std::memory_order_relaxed);
    slot.sequence.store(sequence + 1, std::memory_order_relaxed);
    std::atomic_thread_fence(std::memory_order_release);
    slot.module.store(module, std::memory_order_relaxed);
    slot.hash.store(start.hash, std::memory_order_relaxed);
    slot.length.store(start.length, std::memory_order_relaxed);
    slot.sequence.store(sequence + 2, std::memory_order_release);
}

// The loader's word that a module goes: its place is emptied, since another
// module, under another name, may come to the same address.
constexpr ULONG kModuleUnloaded = 2;  // LDR_DLL_NOTIFICATION_REASON_UNLOADED

struct UnloadNotice {
    ULONG flags;
    const UNICODE_STRING* fullName;
    const UNICODE_STRING* baseName;
    void* base;
    ULONG imageSize;
};

void CALLBACK OnModuleNotice(ULONG reason, const UnloadNotice* notice, void*) {
    if (reason != kModuleUnloaded)
        return;
    Slot& slot = SlotOf(notice->base);
    if (slot.module.load(std::memory_order_relaxed) == notice->base)
        Write(slot, nullptr, {});
}

using RegisterNotification = LONG(NTAPI*)(ULONG, decltype(&OnModuleNotice), void*, void**);

// Without the loader's notices nothing can be remembered safely.
bool WatchUnloads() {
    const auto registerNotification = reinterpret_cast<RegisterNotification>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll"), "LdrRegisterDllNotification")));
    void* cookie = nullptr;
    return registerNotification != nullptr && registerNotification(0, OnModuleNotice, nullptr, &cookie) == 0;
}

}  // namespace

bool RememberedModuleKeyStart(HMODULE module, HashedText& start) {
    static const bool watching = WatchUnloads();
    if (module == nullptr)
        module = GetModuleHandleW(nullptr);
    Slot& slot = SlotOf(module);
    if (Read(slot, module, start))
        return true;
    // Read outside the lock: the module's name is read under the loader's.
    if (!ModuleKeyStart(module, start))
        return false;
    if (watching)
        Write(slot, module, start);
    return true;
}

}  // namespace kt
