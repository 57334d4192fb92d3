// Critical sections that all go through one process-wide named mutex, and
// Wait_All, which holds that mutex for a caller.
#include <cstdint>
#include <new>

#include "kticore/core/Exception.h"
#include "kticore/core/Threads.h"
#include "core/WaitResult.h"
#include "platform/CriticalSection.h"
#include "platform/SharedMutex.h"

namespace {

constexpr char kGlobalMutexName[] = "KT_Fix_Fucking_NT_Bugs_Mutex";

// Not locked: sections are made and destroyed in an orderly way, not raced.
unsigned critSectCount = 0;
kt::sys::SharedMutex* globalMutex = nullptr;

void CountNewSection() {
    if (critSectCount++ == 0)
        globalMutex = kt::sys::OpenSharedMutex(kGlobalMutexName);
}

void CountGoneSection() {
    if (--critSectCount == 0 && globalMutex != nullptr) {
        kt::sys::CloseSharedMutex(globalMutex);
        globalMutex = nullptr;
    }
}

class CCritSect final : public ICritSect {
public:
    explicit CCritSect(bool inCallersMemory) : inCallersMemory(inCallersMemory) { CountNewSection(); }
    ~CCritSect() { CountGoneSection(); }

    ULONG AddRef() override { return ++refs; }

    ULONG Release() override {
        if (--refs != 0)
            return refs;
        if (inCallersMemory)
            this->~CCritSect();
        else
            delete this;
        return 0;
    }

    int QueryInterface(const type_info&, void**) override { return 0; }

    // The mutex first on the way in, the section first on the way out. An
    // abandoned mutex is ours all the same.
    void Enter() override {
        if (globalMutex != nullptr)
            kt::sys::WaitForSharedMutex(globalMutex, kt::sys::kWaitForever);
        section.Enter();
    }

    void Leave() override {
        section.Leave();
        if (globalMutex != nullptr)
            kt::sys::ReleaseSharedMutex(globalMutex);
    }

private:
    kt::sys::CriticalSection section;
    bool inCallersMemory;  // built by _CriticalSection_New_For_Core: not ours to free
    ULONG refs = 1;
};

}  // namespace

ICritSect* CriticalSection_New() { return new CCritSect(false); }

ICritSect* _CriticalSection_New_For_Core(void* memory, int* size) {
    if (memory == nullptr) {
        if (size == nullptr)
            throw CXException(XE_BAD_ARGUMENT);
        *size = static_cast<int>(sizeof(CCritSect));
        return nullptr;
    }
    if (reinterpret_cast<std::uintptr_t>(memory) % alignof(CCritSect) != 0)
        throw CXException(XE_BAD_ARGUMENT);
    return new (memory) CCritSect(true);
}

int Wait_All(int timeoutMs) {
    if (globalMutex == nullptr)
        return KTWAIT_SIGNALLED;
    return kt::WaitResultOf(kt::sys::WaitForSharedMutex(globalMutex, static_cast<DWORD>(timeoutMs)));
}

void Wait_Release() {
    if (globalMutex != nullptr)
        kt::sys::ReleaseSharedMutex(globalMutex);
}
