// Drives the heaps with arbitrary sequences of Alloc, Free, Realloc, heap
// creation and release, freeing and reallocating through any heap, and checks
// after every step that each live block still holds exactly what was written
// to it and that new memory is zero. The sanitizers watch for the rest.
#include <cstdint>
#include <cstring>
#include <vector>

#include "fuzz/FuzzInput.h"
#include "kticore/core/Heap.h"

namespace {

struct Block {
    unsigned char* data;
    size_t size;
    std::uint8_t fill;
    size_t heap;  // index of the owner in `heaps`
};

bool Holds(const Block& block, std::uint8_t value, size_t from, size_t to) {
    for (size_t i = from; i < to; ++i)
        if (block.data[i] != value)
            return false;
    return true;
}

// Sizes are kept small, with a few larger ones, so runs stay fast.
size_t PickSize(kt::fuzz::FuzzInput& input) {
    const unsigned shape = input.Byte();
    return shape < 240 ? input.Below(512) : input.Below(70000);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    kt::fuzz::FuzzInput input(data, size);
    std::vector<IHeap*> heaps = {Mem_DefaultHeap(0)};
    std::vector<Block> blocks;

    while (!input.Empty()) {
        const unsigned action = input.Below(6);
        IHeap* asked = heaps[input.Below(static_cast<unsigned>(heaps.size()))];
        if (action == 0 || blocks.empty()) {
            const size_t owner = input.Below(static_cast<unsigned>(heaps.size()));
            Block block{nullptr, PickSize(input), input.Byte(), owner};
            block.data = static_cast<unsigned char*>(heaps[owner]->Alloc(block.size));
            if (!Holds(block, 0, 0, block.size))
                __builtin_trap();
            std::memset(block.data, block.fill, block.size);
            blocks.push_back(block);
        } else if (action == 1) {
            const size_t index = input.Below(static_cast<unsigned>(blocks.size()));
            asked->Free(blocks[index].data);
            blocks.erase(blocks.begin() + static_cast<std::ptrdiff_t>(index));
        } else if (action == 2) {
            Block& block = blocks[input.Below(static_cast<unsigned>(blocks.size()))];
            const size_t newSize = PickSize(input);
            auto* moved = static_cast<unsigned char*>(asked->Realloc(block.data, newSize));
            const size_t kept = newSize < block.size ? newSize : block.size;
            Block result{moved, newSize, block.fill, block.heap};
            if (moved == block.data || !Holds(result, block.fill, 0, kept) ||
                !Holds(result, 0, kept, newSize) || asked->GetBlockSize(moved) != newSize)
                __builtin_trap();
            std::memset(moved, block.fill, newSize);
            block = result;
        } else if (action == 3 && heaps.size() < 6) {
            heaps.push_back(new_MemoryHeap(input.Byte()));
        } else if (action == 4 && heaps.size() > 1) {
            // Releasing a heap takes its blocks with it.
            const size_t victim = 1 + input.Below(static_cast<unsigned>(heaps.size() - 1));
            heaps[victim]->Release();
            heaps.erase(heaps.begin() + static_cast<std::ptrdiff_t>(victim));
            std::vector<Block> survivors;
            for (Block& block : blocks) {
                if (block.heap == victim)
                    continue;
                if (block.heap > victim)
                    --block.heap;
                survivors.push_back(block);
            }
            blocks.swap(survivors);
        } else {
            for (const Block& block : blocks)
                if (!Holds(block, block.fill, 0, block.size) ||
                    asked->GetBlockSize(block.data) != block.size)
                    __builtin_trap();
        }
    }

    for (const Block& block : blocks)
        if (block.heap == 0)
            heaps[0]->Free(block.data);
    for (size_t i = 1; i < heaps.size(); ++i)
        heaps[i]->Release();
    return 0;
}
