// The moves of the guarded copy, shared by both halves of the seam, which
// wrap them for their calling convention. In: rdi the target, rsi the
// source, rcx the size; only rax, rcx, rsi and rdi change. A fault can only
// happen between the routine's start and its recovery point, where the fault
// handler of each half resumes it.
#pragma once

#include "platform/GuardedCopy.h"

#define KT_GUARDED_COPY_MOVES \
    "    cmp $4, %rcx\n"         \
    "    je 4f\n"                \
    "    cmp $8, %rcx\n"         \
    "    je 8f\n"                \
    "    cmp $2, %rcx\n"         \
    "    je 2f\n"                \
    "    cmp $1, %rcx\n"         \
    "    je 1f\n"                \
    "    rep movsb\n"            \
    "    jmp 9f\n"               \
    "4:  mov (%rsi), %eax\n"     \
    "    mov %eax, (%rdi)\n"     \
    "    jmp 9f\n"               \
    "8:  mov (%rsi), %rax\n"     \
    "    mov %rax, (%rdi)\n"     \
    "    jmp 9f\n"               \
    "2:  movw (%rsi), %ax\n"     \
    "    movw %ax, (%rdi)\n"     \
    "    jmp 9f\n"               \
    "1:  movb (%rsi), %al\n"     \
    "    movb %al, (%rdi)\n"     \
    "9:\n"

namespace kt::sys {

#pragma GCC visibility push(hidden)
// Where a fault inside the routine resumes it.
extern "C" void ktGuardedCopyFault();
#pragma GCC visibility pop

// Whether a fault at `instruction` belongs to the guarded copy.
inline bool IsInGuardedCopy(unsigned long long instruction) {
    return instruction >= reinterpret_cast<unsigned long long>(&ktGuardedCopy) &&
           instruction < reinterpret_cast<unsigned long long>(&ktGuardedCopyFault);
}

inline unsigned long long GuardedCopyRecovery() {
    return reinterpret_cast<unsigned long long>(&ktGuardedCopyFault);
}

}  // namespace kt::sys
