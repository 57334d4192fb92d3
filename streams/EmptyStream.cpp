// A stream that swallows what is written and reads as zeros, never reaching
// its end: a sink for a size count, a source of defaults.
#include <cstring>

#include "streams/StreamRules.h"
#include "streams/TypedStream.h"

namespace kt {
namespace {

class CEmptyStream final : public CTypedStream {
public:
    // Reads report 1, not the count: the stream has a length of 1.
    unsigned Read(void* buffer, unsigned size) override {
        std::memset(buffer, 0, size);
        return 1;
    }
    void Write(const void*, unsigned) override {}
    unsigned Seek(LONG offset, unsigned origin) override {
        position = ClampedSeek(*this, offset, origin, position, kLength);
        return position;
    }
    unsigned GetPosition() override { return position; }
    unsigned GetLength() override { return kLength; }
    const char* GetName() override { return "Empty stream"; }

    int ReadLineW(KTWCHAR* buffer, int) override { return EmptyLine(buffer); }
    int ReadLine(char* buffer, int) override { return EmptyLine(buffer); }
    int ReadVariant(tagKTVARIANT* value) override {
        KTVariantClear(value);
        return 1;
    }
    void WriteVariant(const tagKTVARIANT*) override {}

private:
    static constexpr unsigned kLength = 1;

    template <class Unit>
    static int EmptyLine(Unit* buffer) {
        buffer[0] = 0;
        return 1;
    }

    ULONG position = 0;
};

}  // namespace
}  // namespace kt

IXStream* new_EmptyStream() { return new kt::CEmptyStream(); }
