// Could the dictionary hold a key of this length that ends in these two
// units? Most texts an application loads are not in its dictionary, and this
// answers for them without hashing the text: one bit for each ending of a
// key offered to the dictionary. Bits are never cleared, so "no" is always
// right, and "maybe" sends the text on to its lookup.
//
// The two last units choose a cache line and the length a bit in it, so that
// the asking for a text with and without its prefix reads one line: the
// system call that loaded the text leaves little of the library in the cache.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "kticore/platform/Platform.h"

namespace kt {

class KeyTailFilter {
public:
    void Note(const KTWCHAR* key, size_t length) {
        if (length == 0)
            return;
        const Bit bit = BitOf(length, key[length - 1], length > 1 ? key[length - 2] : 0);
        words[bit.word].fetch_or(bit.mask, std::memory_order_relaxed);
    }

    // Whether a key of `keyLength` units that ends in the `textLength` units
    // of `text` may be there. A key longer than its text by a prefix needs
    // two units of text to be told apart.
    bool MayHold(size_t keyLength, const KTWCHAR* text, size_t textLength) const {
        if (textLength == 0 || (textLength == 1 && keyLength > 1))
            return true;
        const Bit bit = BitOf(keyLength, text[textLength - 1], textLength > 1 ? text[textLength - 2] : 0);
        return (words[bit.word].load(std::memory_order_relaxed) & bit.mask) != 0;
    }

private:
    // 256 lines of 512 bits, 16 KiB: a dictionary of ten thousand keys
    // leaves some 7 % of the unknown texts to be hashed. A larger filter
    // answers more often but, read after the system's call, costs more.
    static constexpr unsigned kLinesLog2 = 8;
    static constexpr unsigned kWordsPerLine = 8;
    static constexpr unsigned kWordBits = 64;
    static constexpr unsigned kBitsPerLineLog2 = 9;

    struct Bit {
        std::size_t word;
        std::uint64_t mask;
    };

    static Bit BitOf(size_t length, KTWCHAR last, KTWCHAR beforeLast) {
        std::uint32_t tail = static_cast<std::uint16_t>(last) * 0x85EBCA77u + static_cast<std::uint16_t>(beforeLast) * 0xC2B2AE3Du;
        tail ^= tail >> 15;
        tail *= 0x2C1B3C6Du;
        const std::size_t line = tail >> (32 - kLinesLog2);
        const std::uint32_t bitInLine = (static_cast<std::uint32_t>(length) * 0x9E3779B1u + tail) >> (32 - kBitsPerLineLog2);
        return {line * kWordsPerLine + bitInLine / kWordBits, std::uint64_t{1} << bitInLine % kWordBits};
    }

    alignas(64) std::atomic<std::uint64_t> words[(std::size_t{1} << kLinesLog2) * kWordsPerLine] = {};
};

}  // namespace kt
