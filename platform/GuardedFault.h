// What the fault handlers of both halves of the seam ask of a fault: whether
// its instruction is guarded (GuardedCopy.h), and where it resumes.
#pragma once

#include <cstdint>
#include <cstring>

#include "platform/GuardedCopy.h"

namespace kt::sys {

// The code of this module, where guarded instructions lie: the bytes in
// front of a faulting instruction are read only inside it.
struct CodeRange {
    std::uintptr_t start = 0;
    std::uintptr_t end = 0;
};

// The fixup of the guarded instruction at `instruction`, or 0 when the
// instruction is not one.
constexpr std::uint8_t kShortJump = 0xEB;
constexpr std::uint8_t kNearJump = 0xE9;

inline std::uintptr_t GuardedFixup(std::uintptr_t instruction, const CodeRange& code) {
    constexpr std::uintptr_t kMarker = 2 * sizeof(std::uint32_t);
    if (instruction < code.start + kMarker || instruction >= code.end)
        return 0;
    std::uint32_t magic;
    std::int32_t distance;
    std::memcpy(&magic, reinterpret_cast<const void*>(instruction - kMarker), sizeof magic);
    std::memcpy(&distance, reinterpret_cast<const void*>(instruction - sizeof distance),
                sizeof distance);
    if (magic != kGuardMagic)
        return 0;
    // A fixup is a jump: the magic number met by chance elsewhere in the code
    // leads nowhere else.
    const std::uintptr_t fixup =
        instruction + static_cast<std::uintptr_t>(static_cast<std::intptr_t>(distance));
    if (fixup < code.start || fixup >= code.end)
        return 0;
    const auto opcode = *reinterpret_cast<const std::uint8_t*>(fixup);
    return opcode == kShortJump || opcode == kNearJump ? fixup : 0;
}

}  // namespace kt::sys
