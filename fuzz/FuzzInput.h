// Reads a fuzzer's bytes as a sequence of small decisions. When the bytes run
// out every read answers 0, so any input is a complete program.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kt::fuzz {

class FuzzInput {
public:
    FuzzInput(const std::uint8_t* data, size_t size) : data(data), size(size) {}

    bool Empty() const { return position >= size; }

    std::uint8_t Byte() { return position < size ? data[position++] : 0; }

    // A number below `limit` (which must not be 0).
    unsigned Below(unsigned limit) {
        const unsigned wide = static_cast<unsigned>(Byte()) << 8 | Byte();
        return wide % limit;
    }

private:
    const std::uint8_t* data;
    size_t size;
    size_t position = 0;
};

}  // namespace kt::fuzz
