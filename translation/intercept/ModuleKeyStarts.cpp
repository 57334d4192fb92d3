#include "translation/intercept/ModuleKeyStarts.h"

#include <winternl.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "platform/CriticalSection.h"
#include "platform/GuardedCopy.h"
#include "translation/ResourceRecords.h"
#include "translation/intercept/RecentStrings.h"

namespace kt {
namespace {

// One place for each module, by its handle; a module whose place is taken is
// read each time, as without the memory.
constexpr std::uintptr_t kSlots = 64;
constexpr unsigned kModuleAlignmentBits = 16;  // bases are 64 KiB aligned
// The handle of a module loaded as a data file marks its low bits.
constexpr std::uintptr_t kDataFileMarks = 3;
constexpr std::size_t kPeHeaderOffsetField = 0x3C;

// A remembered start under a sequence count: readers take no lock, and a
// reader that met a writer, or an odd count, reads the module's name itself.
struct Slot {
    std::atomic<unsigned> sequence{0};
    std::atomic<HMODULE> module{nullptr};
    std::atomic<std::uint64_t> identity{0};
    std::atomic<DWORD> hash{0};
    std::atomic<size_t> length{0};
};

Slot slots[kSlots];
sys::CriticalSection writing;

Slot& SlotOf(const void* handle) {
    return slots[(reinterpret_cast<std::uintptr_t>(handle) >> kModuleAlignmentBits) % kSlots];
}

// What tells one module from another at the same address, where the loader
// does not say that the first went (a module loaded as a data file, or
// without its references resolved): the time stamp, size and checksum of
// its headers. 0 when they cannot be read.
std::uint64_t IdentityOf(HMODULE module) {
    const auto* base =
        reinterpret_cast<const std::uint8_t*>(reinterpret_cast<std::uintptr_t>(module) & ~kDataFileMarks);
    std::uint32_t peOffset = 0, stamp = 0, size = 0, checksum = 0;
    if (!sys::LoadGuarded(base + kPeHeaderOffsetField, peOffset))
        return 0;
    const std::uint8_t* headers = base + peOffset;
    if (!sys::LoadGuarded(headers + offsetof(IMAGE_NT_HEADERS64, FileHeader.TimeDateStamp), stamp) ||
        !sys::LoadGuarded(headers + offsetof(IMAGE_NT_HEADERS64, OptionalHeader.SizeOfImage), size) ||
        !sys::LoadGuarded(headers + offsetof(IMAGE_NT_HEADERS64, OptionalHeader.CheckSum), checksum))
        return 0;
    return std::uint64_t{stamp} << 32 | (size ^ checksum);
}

bool Read(const Slot& slot, HMODULE module, std::uint64_t identity, HashedText& start) {
    const unsigned sequence = slot.sequence.load(std::memory_order_acquire);
    if (sequence % 2 != 0)
        return false;
    const HMODULE held = slot.module.load(std::memory_order_relaxed);
    const std::uint64_t heldIdentity = slot.identity.load(std::memory_order_relaxed);
    const HashedText read = {slot.hash.load(std::memory_order_relaxed), slot.length.load(std::memory_order_relaxed)};
    std::atomic_thread_fence(std::memory_order_acquire);
    if (held != module || heldIdentity != identity || slot.sequence.load(std::memory_order_relaxed) != sequence)
        return false;
    start = read;
    return true;
}

void Write(Slot& slot, HMODULE module, std::uint64_t identity, HashedText start) {
    sys::ScopedLock hold(writing);
    const unsigned sequence = slot.sequence.load(std::memory_order_relaxed);
    slot.sequence.store(sequence + 1, std::memory_order_relaxed);
    std::atomic_thread_fence(std::memory_order_release);
    slot.module.store(module, std::memory_order_relaxed);
    slot.identity.store(identity, std::memory_order_relaxed);
    slot.hash.store(start.hash, std::memory_order_relaxed);
    slot.length.store(start.length, std::memory_order_relaxed);
    slot.sequence.store(sequence + 2, std::memory_order_release);
}

// The loader's word that a module goes: its place is emptied, and its
// resources' records forgotten, since another module, under another name,
// may come to the same address, even a copy of it with the same headers.
constexpr ULONG kModuleUnloaded = 2;  // LDR_DLL_NOTIFICATION_REASON_UNLOADED

struct ModuleNotice {
    ULONG flags;
    const UNICODE_STRING* fullName;
    const UNICODE_STRING* baseName;
    void* base;
    ULONG imageSize;
};

void CALLBACK OnModuleNotice(ULONG reason, const ModuleNotice* notice, void*) {
    if (reason != kModuleUnloaded)
        return;
    const auto module = static_cast<HMODULE>(notice->base);
    Slot& slot = SlotOf(module);
    if (slot.module.load(std::memory_order_relaxed) == module)
        Write(slot, nullptr, 0, {});
    ForgetModuleResources(module);
    ForgetRecentStrings();
}

using RegisterNotification = LONG(NTAPI*)(ULONG, decltype(&OnModuleNotice), void*, void**);
using UnregisterNotification = LONG(NTAPI*)(void*);

template <class Function>
Function LoaderFunction(const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll"), name)));
}

// Listens from the library's load to its unload, so that no notice reaches
// code that is gone. Without the notices nothing is remembered.
class UnloadWatch {
public:
    UnloadWatch() {
        if (const auto registerNotification = LoaderFunction<RegisterNotification>("LdrRegisterDllNotification"))
            if (registerNotification(0, OnModuleNotice, nullptr, &cookie) != 0)
                cookie = nullptr;
    }
    ~UnloadWatch() {
        if (const auto unregisterNotification = LoaderFunction<UnregisterNotification>("LdrUnregisterDllNotification"))
            if (cookie != nullptr)
                unregisterNotification(cookie);
    }
    UnloadWatch(const UnloadWatch&) = delete;
    UnloadWatch& operator=(const UnloadWatch&) = delete;

    bool Watching() const { return cookie != nullptr; }

private:
    void* cookie = nullptr;
};

const UnloadWatch unloadWatch;

}  // namespace

bool RememberedModuleKeyStart(HMODULE module, HashedText& start) {
    if (module == nullptr)
        module = GetModuleHandleW(nullptr);
    const std::uint64_t identity = IdentityOf(module);
    Slot& slot = SlotOf(module);
    if (identity != 0 && Read(slot, module, identity, start))
        return true;
    // Read outside the lock: the module's name is read under the loader's.
    if (!ModuleKeyStart(module, start))
        return false;
    if (identity != 0 && unloadWatch.Watching())
        Write(slot, module, identity, start);
    return true;
}

bool RememberableIdentity(HMODULE module, std::uint64_t& identity) {
    identity = IdentityOf(module);
    return identity != 0 && unloadWatch.Watching();
}

}  // namespace kt
