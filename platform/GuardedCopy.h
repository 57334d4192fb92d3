// Copies from and to memory that may fault under them: a host's block named
// by its address, a mapped view of a file that another process has cut
// short, a view that may not be written. As kernels copy from user memory,
// each instruction that may fault is guarded: a marker in front of it names
// a fixup, and the fault handler of the seam (GuardedFault.h) resumes a fault
// at a guarded instruction there; the copy then answers false. Every other
// fault goes on to whatever handled it before. Inline and without a call, so
// that a typed read of a mapped file stays one move.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kt::sys {

// The marker: "jmp" over the fixup and the marker, then the magic word and
// the distance from the guarded instruction back to its fixup, which goes to
// the label `faulted` of the "asm goto". The fast path pays one jump. The
// "asm goto"s say "volatile": GCC 12 deletes one whose outputs go unused.
#define KT_GUARD_MAGIC "0x4b544746"
#define KT_GUARDED(instruction)         \
    "    jmp 8f\n"                      \
    "7:  jmp %l[faulted]\n"             \
    "    .long " KT_GUARD_MAGIC "\n"    \
    "    .long 7b - 8f\n"               \
    "8:  " instruction "\n"

constexpr std::uint32_t kGuardMagic = 0x4b544746;  // the number of KT_GUARD_MAGIC

// One value of 1, 2, 4 or 8 bytes (or 16 in an SSE register) in one move.
template <class T>
inline bool LoadGuarded(const void* from, T& value) {
    using Aliased [[gnu::may_alias]] = T;
    asm volatile goto(KT_GUARDED("mov %[from], %[value]")
                      : [value] "=r"(value)
                      : [from] "m"(*static_cast<const Aliased*>(from))
                      :
                      : faulted);
    return true;
faulted:
    return false;
}

template <>
inline bool LoadGuarded(const void* from, __m128i& value) {
    asm volatile goto(KT_GUARDED("movdqu %[from], %[value]")
                      : [value] "=x"(value)
                      : [from] "m"(*static_cast<const __m128i_u*>(from))
                      :
                      : faulted);
    return true;
faulted:
    return false;
}

template <class T>
inline bool StoreGuarded(void* to, T value) {
    using Aliased [[gnu::may_alias]] = T;
    asm volatile goto(KT_GUARDED("mov %[value], %[to]")
                      : [to] "=m"(*static_cast<Aliased*>(to))
                      : [value] "r"(value)
                      :
                      : faulted);
    return true;
faulted:
    return false;
}

// Any number of bytes, in one string move.
inline bool MoveGuarded(void* to, const void* from, size_t size) {
    asm volatile goto(KT_GUARDED("rep movsb")
                      : "+D"(to), "+S"(from), "+c"(size)
                      :
                      : "memory"
                      : faulted);
    return true;
faulted:
    return false;
}

template <class T>
inline bool CopyValueGuarded(void* to, const void* from) {
    T value;
    return LoadGuarded(from, value) && StoreGuarded(to, value);
}

// Copies `size` bytes; false after a fault, with `to` partly written.
// Copies of 1, 2, 4 or 8 bytes are single moves.
inline bool CopyGuarded(void* to, const void* from, size_t size) {
    switch (size) {
    case 1: return CopyValueGuarded<std::uint8_t>(to, from);
    case 2: return CopyValueGuarded<std::uint16_t>(to, from);
    case 4: return CopyValueGuarded<std::uint32_t>(to, from);
    case 8: return CopyValueGuarded<std::uint64_t>(to, from);
    default: return MoveGuarded(to, from, size);
    }
}

constexpr size_t kCopyFaulted = ~size_t{0};

// Copies up to `size` bytes from memory that may fault to memory that will
// not, and stops behind the first `stop` byte: the number of bytes up to and
// including it, or `size` when there is none; kCopyFaulted after a fault.
// Nothing behind the stop is written: the caller's bytes there stay.
inline size_t CopyUntilGuarded(char* to, const void* from, size_t size, char stop) {
    const auto* source = static_cast<const char*>(from);
    const __m128i stops = _mm_set1_epi8(stop);
    size_t done = 0;
    for (; size - done >= sizeof(__m128i); done += sizeof(__m128i)) {
        __m128i piece;
        if (!LoadGuarded(source + done, piece))
            return kCopyFaulted;
        const auto hits = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(piece, stops)));
        if (hits != 0) {
            const size_t through = static_cast<size_t>(__builtin_ctz(hits)) + 1;
            std::memcpy(to + done, &piece, through);
            return done + through;
        }
        _mm_storeu_si128(reinterpret_cast<__m128i_u*>(to + done), piece);
    }
    char rest[sizeof(__m128i)];
    if (!MoveGuarded(rest, source + done, size - done))
        return kCopyFaulted;
    const void* found = std::memchr(rest, stop, size - done);
    const size_t through =
        found != nullptr ? static_cast<size_t>(static_cast<const char*>(found) - rest) + 1
                         : size - done;
    std::memcpy(to + done, rest, through);
    return done + through;
}

}  // namespace kt::sys
