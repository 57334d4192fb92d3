// Fuzz inputs laid out as files in memory: a block below 2 GiB, where the
// 32-bit address of a memory name reaches it, and names of pieces of it.
#pragma once

#include <cstdint>
#include <string>

#include "fuzz/FuzzStreams.h"
#include "tests/support/LowBlock.h"

namespace kt::fuzz {

constexpr size_t kBlockSize = 4u << 20;

inline kt::test::LowBlock& Block() {
    static kt::test::LowBlock block(kBlockSize);
    Check(block.data != nullptr);
    return block;
}

// "fmem::address,size" of a piece of the block.
inline std::string MemoryName(size_t offset, size_t size) {
    return "fmem::" + std::to_string(reinterpret_cast<std::uintptr_t>(Block().data) + offset) +
           "," + std::to_string(size);
}

// Memory names of the input's own are spelt out of use ("fmem:" in any case
// becomes "xmem:"): a block of any size anywhere reads for ever.
inline void DisarmMemoryNames(std::string& text) {
    for (size_t at = 0; at + 5 <= text.size(); ++at) {
        static const char kPrefix[] = "fmem:";
        size_t i = 0;
        while (i < 5 && (text[at + i] | 0x20) == (kPrefix[i] | 0x20))
            ++i;
        if (i == 5)
            text[at] = 'x';
    }
}

// `text` as the one file of the block, by its wide memory name; empty when
// it does not fit.
inline std::basic_string<KTWCHAR> SoleMemoryFile(const std::string& text) {
    if (text.size() > kBlockSize)
        return std::basic_string<KTWCHAR>();
    std::copy(text.begin(), text.end(), Block().data);
    const std::string name = MemoryName(0, text.size());
    return std::basic_string<KTWCHAR>(name.begin(), name.end());
}

}  // namespace kt::fuzz
