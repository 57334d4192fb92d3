// A stream over a growing block of memory, which it hands out without a copy
// through IMemBlock, and which a progress sink may cancel.
#pragma once

#include <cstdint>

#include "streams/StreamRules.h"
#include "streams/TypedStream.h"

namespace kt {

// The growing block. The step makes a series of small writes cost few
// copies: a block that must grow gets the need rounded up past the next
// multiple of the step, plus what it had, so it more than doubles while it is
// large against the step.
struct CMemBlockBuffer {
    static constexpr ULONG kGrowBy = 4096;

    CMemBlockBuffer() = default;
    CMemBlockBuffer(const CMemBlockBuffer&) = delete;
    CMemBlockBuffer& operator=(const CMemBlockBuffer&) = delete;
    ~CMemBlockBuffer() { delete[] data; }

    // Room for `needed` bytes; the bytes in use move, the rest is undefined.
    void Reserve(std::uint64_t needed);
    // An exact block of `newSize` bytes, copied from `source` unless null.
    void Assign(const void* source, ULONG newSize);

    unsigned char* data = nullptr;
    ULONG capacity = 0;
    ULONG size = 0;
    ULONG growBy = kGrowBy;
};

class CMemStream : public CTypedStream, public IMemBlock {
public:
    explicit CMemStream(KTIFC::IProgress* progress = nullptr);
    CMemStream(const void* source, ULONG size);
    ~CMemStream() override;

    // One count for both interfaces.
    ULONG AddRef() override { return CTypedStream::AddRef(); }
    ULONG Release() override { return CTypedStream::Release(); }
    int QueryInterface(const type_info& wanted, void** out) override {
        return CTypedStream::QueryInterface(wanted, out);
    }
    int InternalQueryInterface(const type_info& wanted, void** out) override;

    unsigned Read(void* buffer, unsigned size) override;
    void Write(const void* buffer, unsigned size) override;
    unsigned Seek(LONG offset, unsigned origin) override;
    unsigned GetPosition() override { return position; }
    unsigned GetLength() override { return block.size; }
    const char* GetName() override { return "Memory stream"; }

    ULONG GetBlockSize() override { return block.size; }
    void* GetBlockData() override;
    void SetBlockData(const void* source, ULONG size) override;

private:
    void AskProgress();

    CMemBlockBuffer block;
    ULONG position = 0;
    KTIFC::IProgress* progress = nullptr;
};

}  // namespace kt
