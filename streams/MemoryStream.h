// A stream over a growing block of memory, which it hands out without a copy
// through IMemBlock, and which a progress sink may cancel.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>

#include "platform/GrowingBlock.h"
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
    ~CMemBlockBuffer() { sys::FreeGrownBlock(data, capacity); }

    // Room for `needed` bytes; the bytes in use stay, the rest is undefined.
    // The block may move; a large one grows without a copy (GrowingBlock.h).
    void Reserve(std::uint64_t needed) {
        if (needed <= capacity)
            return;
        // Positions and sizes of a stream are 32-bit: a block can not outgrow
        // them, and the last step is cut to fit.
        if (needed > 0xFFFFFFFFu)
            throw std::bad_alloc();
        const std::uint64_t grown = (needed / growBy + 1) * growBy + capacity;
        const ULONG newCapacity = static_cast<ULONG>(std::min<std::uint64_t>(grown, 0xFFFFFFFFu));
        auto* newData = static_cast<unsigned char*>(sys::GrowBlock(data, capacity, newCapacity));
        if (newData == nullptr)
            throw std::bad_alloc();
        data = newData;
        capacity = newCapacity;
    }
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

    // Typed values inside the block skip the general Read and Write when no
    // sink is to be asked; what they do is the same.
    unsigned char ReadByte() override { return ReadFast<unsigned char>(); }
    unsigned short ReadWord() override { return ReadFast<unsigned short>(); }
    ULONG ReadDWord() override { return ReadFast<ULONG>(); }
    double ReadDouble() override { return ReadFast<double>(); }
    void WriteByte(unsigned char value) override { WriteFast(value); }
    void WriteWord(unsigned short value) override { WriteFast(value); }
    void WriteDWord(ULONG value) override { WriteFast(value); }
    void WriteDouble(double value) override { WriteFast(value); }

    ULONG GetBlockSize() override { return block.size; }
    void* GetBlockData() override;
    void SetBlockData(const void* source, ULONG size) override;

private:
    void AskProgress() {
        if (progress != nullptr)
            ThrowIfCancelled();
    }
    void ThrowIfCancelled();

    // A value inside the block of a stream without a sink is one move, and
    // needs no frame; the rest takes the general Read and Write, out of line.
    template <class T>
    T ReadFast() {
        const ULONG at = position;
        if (std::uint64_t{at} + sizeof(T) > block.size || progress != nullptr)
            return ReadGeneral<T>();
        T value;
        std::memcpy(&value, block.data + at, sizeof value);
        position = at + sizeof value;
        return value;
    }

    template <class T>
    void WriteFast(T value) {
        const ULONG at = position;
        if (at > block.size || std::uint64_t{at} + sizeof value > block.capacity ||
            progress != nullptr)
            return WriteGeneral(value);
        std::memcpy(block.data + at, &value, sizeof value);
        const ULONG end = at + sizeof value;
        position = end;
        if (end > block.size)
            block.size = end;
    }

    template <class T>
    __attribute__((noinline)) T ReadGeneral() {
        return ReadValue<T>();
    }
    template <class T>
    __attribute__((noinline)) void WriteGeneral(T value) {
        Write(&value, sizeof value);
    }

    CMemBlockBuffer block;
    ULONG position = 0;
    KTIFC::IProgress* progress = nullptr;
};

}  // namespace kt
