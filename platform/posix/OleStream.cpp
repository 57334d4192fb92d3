// An OLE stream in memory, as a stream on global memory behaves: positions
// may stand past the end, where reads find nothing and writes fill the gap
// with zeros; a seek before the start fails and leaves the position.
#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/OleStream.h"

namespace kt::sys {
namespace {

class MemoryOleStream final : public IStream {
public:
    ULONG AddRef() override { return ++refs; }
    ULONG Release() override {
        if (--refs != 0)
            return refs;
        delete this;
        return 0;
    }

    HRESULT Read(void* buffer, ULONG size, ULONG* read) override {
        ULONG count = 0;
        if (position < bytes.size())
            count = static_cast<ULONG>(std::min<std::uint64_t>(size, bytes.size() - position));
        if (count != 0)
            std::memcpy(buffer, bytes.data() + position, count);
        position += count;
        if (read != nullptr)
            *read = count;
        return S_OK;
    }

    HRESULT Write(const void* buffer, ULONG size, ULONG* written) override {
        if (position + size > bytes.size())
            bytes.resize(position + size);
        if (size != 0)
            std::memcpy(bytes.data() + position, buffer, size);
        position += size;
        if (written != nullptr)
            *written = size;
        return S_OK;
    }

    HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* newPosition) override {
        if (origin > STREAM_SEEK_END)
            return STG_E_INVALIDFUNCTION;
        const std::int64_t base = origin == STREAM_SEEK_SET   ? 0
                                  : origin == STREAM_SEEK_CUR ? static_cast<std::int64_t>(position)
                                                              : static_cast<std::int64_t>(bytes.size());
        if (base + move.QuadPart < 0)
            return STG_E_SEEKERROR;
        position = static_cast<std::uint64_t>(base + move.QuadPart);
        if (newPosition != nullptr)
            newPosition->QuadPart = position;
        return S_OK;
    }

    HRESULT Commit(DWORD) override { return S_OK; }

private:
    ~MemoryOleStream() = default;

    ULONG refs = 1;
    std::uint64_t position = 0;
    std::vector<unsigned char> bytes;
};

}  // namespace

IStream* NewMemoryOleStream() { return new MemoryOleStream(); }

}  // namespace kt::sys
