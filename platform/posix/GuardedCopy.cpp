// The POSIX half of the guarded copy: a SIGSEGV and SIGBUS handler that
// resumes a fault at a guarded instruction of this object at its fixup, and
// hands every other fault to the handler that was there before.
#include <link.h>
#include <signal.h>
#include <ucontext.h>

#include "platform/GuardedFault.h"

namespace kt::sys {
namespace {

void ResumeGuardedFault(int signal, siginfo_t* info, void* context);

// The executable segment of the loaded object that holds this code.
CodeRange ThisCode() {
    CodeRange code;
    dl_iterate_phdr(
        [](dl_phdr_info* object, size_t, void* found) {
            const auto here = reinterpret_cast<std::uintptr_t>(&ResumeGuardedFault);
            for (ElfW(Half) i = 0; i < object->dlpi_phnum; ++i) {
                const ElfW(Phdr)& segment = object->dlpi_phdr[i];
                const std::uintptr_t start = object->dlpi_addr + segment.p_vaddr;
                if (segment.p_type == PT_LOAD && (segment.p_flags & PF_X) && here >= start &&
                    here < start + segment.p_memsz) {
                    *static_cast<CodeRange*>(found) = {start, start + segment.p_memsz};
                    return 1;
                }
            }
            return 0;
        },
        &code);
    return code;
}

const CodeRange thisCode = ThisCode();
struct sigaction previousOnSegv;
struct sigaction previousOnBus;

// Only a fault the kernel met resumes at a fixup: a signal that somebody
// sent (si_code of 0 or below) goes on like every other. Where the previous
// handler was the default, the default comes back, and the fault, met again
// when the instruction runs again, ends the process as it would have.
void ResumeGuardedFault(int signal, siginfo_t* info, void* context) {
    const bool met = info->si_code > 0;
    auto& instruction = static_cast<ucontext_t*>(context)->uc_mcontext.gregs[REG_RIP];
    const std::uintptr_t fixup =
        met ? GuardedFixup(static_cast<std::uintptr_t>(instruction), thisCode) : 0;
    if (fixup != 0) {
        instruction = static_cast<greg_t>(fixup);
        return;
    }
    const struct sigaction& previous = signal == SIGBUS ? previousOnBus : previousOnSegv;
    if (previous.sa_flags & SA_SIGINFO) {
        previous.sa_sigaction(signal, info, context);
    } else if (previous.sa_handler == SIG_IGN) {
        return;  // the host chose to ignore it
    } else if (previous.sa_handler != SIG_DFL) {
        previous.sa_handler(signal);
    } else {
        struct sigaction fallback = {};
        fallback.sa_handler = SIG_DFL;
        sigaction(signal, &fallback, nullptr);
        if (!met)  // nothing runs again to meet it
            raise(signal);
    }
}

// Installed while the object is loaded; put back at unloading only where
// nobody has come in behind it.
class FaultHandler {
public:
    FaultHandler() {
        struct sigaction handler = {};
        handler.sa_sigaction = ResumeGuardedFault;
        handler.sa_flags = SA_SIGINFO | SA_ONSTACK;
        sigemptyset(&handler.sa_mask);
        sigaction(SIGSEGV, &handler, &previousOnSegv);
        sigaction(SIGBUS, &handler, &previousOnBus);
    }
    ~FaultHandler() {
        Restore(SIGSEGV, previousOnSegv);
        Restore(SIGBUS, previousOnBus);
    }
    FaultHandler(const FaultHandler&) = delete;
    FaultHandler& operator=(const FaultHandler&) = delete;

private:
    static void Restore(int signal, const struct sigaction& previous) {
        struct sigaction current = {};
        sigaction(signal, nullptr, &current);
        if ((current.sa_flags & SA_SIGINFO) && current.sa_sigaction == ResumeGuardedFault)
            sigaction(signal, &previous, nullptr);
    }
};

const FaultHandler faultHandler;

}  // namespace
}  // namespace kt::sys
