#include <signal.h>
#include <ucontext.h>

#include "platform/GuardedCopyRoutine.h"

// The System V convention passes the arguments in rdi, rsi and rdx.
asm(".text\n"
    ".globl ktGuardedCopy\n"
    ".hidden ktGuardedCopy\n"
    ".type ktGuardedCopy, @function\n"
    ".globl ktGuardedCopyFault\n"
    ".hidden ktGuardedCopyFault\n"
    ".p2align 4\n"
    "ktGuardedCopy:\n"
    "    mov %rdx, %rcx\n"
    KT_GUARDED_COPY_MOVES
    "    mov $1, %eax\n"
    "    ret\n"
    "ktGuardedCopyFault:\n"
    "    xor %eax, %eax\n"
    "    ret\n"
    ".size ktGuardedCopy, . - ktGuardedCopy\n");

namespace kt::sys {
namespace {

struct sigaction previousOnSegv;
struct sigaction previousOnBus;

// A fault inside the copy resumes at its recovery point. Any other goes to
// the handler that was there before (the sanitizers' among them); where that
// was the default, the default comes back and the fault, met again when the
// instruction runs again, ends the process as it would have.
void ResumeFaultedCopy(int signal, siginfo_t* info, void* context) {
    auto& instruction = static_cast<ucontext_t*>(context)->uc_mcontext.gregs[REG_RIP];
    if (IsInGuardedCopy(static_cast<unsigned long long>(instruction))) {
        instruction = static_cast<greg_t>(GuardedCopyRecovery());
        return;
    }
    const struct sigaction& previous = signal == SIGBUS ? previousOnBus : previousOnSegv;
    if (previous.sa_flags & SA_SIGINFO) {
        previous.sa_sigaction(signal, info, context);
    } else if (previous.sa_handler != SIG_DFL && previous.sa_handler != SIG_IGN) {
        previous.sa_handler(signal);
    } else {
        struct sigaction fallback = {};
        fallback.sa_handler = SIG_DFL;
        sigaction(signal, &fallback, nullptr);
        if (info->si_code <= 0)  // sent, not met: nothing runs again
            raise(signal);
    }
}

// Installed while the library is loaded; put back at unloading only where
// nobody has come in behind it.
class FaultHandler {
public:
    FaultHandler() {
        struct sigaction handler = {};
        handler.sa_sigaction = ResumeFaultedCopy;
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
        if ((current.sa_flags & SA_SIGINFO) && current.sa_sigaction == ResumeFaultedCopy)
            sigaction(signal, &previous, nullptr);
    }
};

const FaultHandler faultHandler;

}  // namespace
}  // namespace kt::sys
