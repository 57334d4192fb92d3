// A stream over a growing block of memory, which it hands out without a copy
// through IMemBlock, and which a progress sink may cancel.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>

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
    // A block that moved is handed back, to be freed once nothing reads from
    // it: what is written may come from the block itself.
    [[nodiscard]] std::unique_ptr<unsigned char[]> Reserve(std::uint64_t needed);
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

    // Typed values inside the block skip the general Read and Write; what
    // they do, the progress question included, is the same.
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
    void AskProgress();

    template <class T>
    T ReadFast() {
        if (block.size < sizeof(T) || position > block.size - sizeof(T))
            return ReadValue<T>();
        T value;
        std::memcpy(&value, block.data + position, sizeof value);
        position += sizeof value;
        AskProgress();
        return value;
    }

    template <class T>
    void WriteFast(T value) {
        if (position > block.size || block.capacity - position < sizeof value) {
            Write(&value, sizeof value);
            return;
        }
        std::memcpy(block.data + position, &value, sizeof value);
        position += sizeof value;
        if (position > block.size)
            block.size = position;
        AskProgress();
    }

    CMemBlockBuffer block;
    ULONG position = 0;
    KTIFC::IProgress* progress = nullptr;
};

}  // namespace kt
