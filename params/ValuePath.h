// A value path split at its last `\` into the section part and the value
// name, in a fixed buffer: back ends that split value paths share its limit.
#pragma once

#include <cstring>

namespace kt::params {

class ValuePath {
public:
    // Bytes of the buffer, terminator included: a path with a `\` must be
    // shorter.
    static constexpr size_t kBufferSize = 512;

    explicit ValuePath(const char* path) {
        const char* cut = path != nullptr ? std::strrchr(path, '\\') : nullptr;
        if (cut == nullptr)
            return;
        const size_t length = std::strlen(path);
        fits = length < kBufferSize;
        if (!fits)
            return;
        std::memcpy(buffer, path, length + 1);
        buffer[cut - path] = 0;
        name = buffer + (cut - path) + 1;
    }

    // Whether the path names a section below the one it was given to.
    bool HasSection() const { return name != nullptr || !fits; }
    // False for a path with a `\` that does not fit the buffer.
    bool Fits() const { return fits; }
    const char* Section() const { return buffer; }
    const char* Name() const { return name; }

private:
    char buffer[kBufferSize];
    const char* name = nullptr;
    bool fits = true;
};

}  // namespace kt::params
