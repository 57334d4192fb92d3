#include <windows.h>

#include "platform/GuardedCopyRoutine.h"

// Windows x64 passes the arguments in rcx, rdx and r8 and keeps rdi and rsi
// for its caller: they wait in r9 and r10, which the caller gives up. The
// routine touches no stack, so it needs no unwinding data.
asm(".text\n"
    ".globl ktGuardedCopy\n"
    ".globl ktGuardedCopyFault\n"
    ".p2align 4\n"
    "ktGuardedCopy:\n"
    "    mov %rdi, %r9\n"
    "    mov %rsi, %r10\n"
    "    mov %rcx, %rdi\n"
    "    mov %rdx, %rsi\n"
    "    mov %r8, %rcx\n"
    KT_GUARDED_COPY_MOVES
    "    mov %r9, %rdi\n"
    "    mov %r10, %rsi\n"
    "    mov $1, %eax\n"
    "    ret\n"
    "ktGuardedCopyFault:\n"
    "    mov %r9, %rdi\n"
    "    mov %r10, %rsi\n"
    "    xor %eax, %eax\n"
    "    ret\n");

namespace kt::sys {
namespace {

// An access violation, an in-page error of a mapped file or a guard page
// met inside the copy resumes at its recovery point; every other exception
// goes on to the handlers behind this one.
LONG CALLBACK ResumeFaultedCopy(EXCEPTION_POINTERS* exception) {
    const DWORD code = exception->ExceptionRecord->ExceptionCode;
    const bool fault = code == EXCEPTION_ACCESS_VIOLATION || code == EXCEPTION_IN_PAGE_ERROR ||
                       code == STATUS_GUARD_PAGE_VIOLATION;
    if (!fault || !IsInGuardedCopy(exception->ContextRecord->Rip))
        return EXCEPTION_CONTINUE_SEARCH;
    exception->ContextRecord->Rip = GuardedCopyRecovery();
    return EXCEPTION_CONTINUE_EXECUTION;
}

// Installed first in line while the library is loaded.
class FaultHandler {
public:
    FaultHandler() : handle(AddVectoredExceptionHandler(1, ResumeFaultedCopy)) {}
    ~FaultHandler() { RemoveVectoredExceptionHandler(handle); }
    FaultHandler(const FaultHandler&) = delete;
    FaultHandler& operator=(const FaultHandler&) = delete;

private:
    void* handle;
};

const FaultHandler faultHandler;

}  // namespace
}  // namespace kt::sys
