// A block of memory below 2 GiB, where a memory name's 32-bit address can
// reach it.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(_WIN32)
#    include <windows.h>
#else
#    include <sys/mman.h>
#endif

namespace kt::test {

class LowBlock {
public:
    explicit LowBlock(size_t size) : size(size) {
        for (std::uintptr_t address = 0x30000000; data == nullptr && address < 0x70000000;
             address += 0x01000000) {
#if defined(_WIN32)
            data = static_cast<unsigned char*>(VirtualAlloc(reinterpret_cast<void*>(address), size,
                                                            MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
#else
            void* block = mmap(reinterpret_cast<void*>(address), size, PROT_READ | PROT_WRITE,
                               MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
            data = block != MAP_FAILED ? static_cast<unsigned char*>(block) : nullptr;
#endif
        }
    }
    ~LowBlock() {
#if defined(_WIN32)
        VirtualFree(data, 0, MEM_RELEASE);
#else
        munmap(data, size);
#endif
    }
    LowBlock(const LowBlock&) = delete;
    LowBlock& operator=(const LowBlock&) = delete;

    unsigned char* data = nullptr;
    size_t size;
};

}  // namespace kt::test
