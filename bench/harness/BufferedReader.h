// The peer of the file benchmarks: what a file class does without a mapping.
// It reads its source into a 64 KiB buffer and serves typed values and lines
// from there, through virtual calls that are out of line, as a file class of
// a library is to its callers. `Source` gives Read(buffer, size) -> count.
#pragma once

#include <algorithm>
#include <cstring>
#include <vector>

namespace kt::bench {

struct IBufferedReader {
    virtual ~IBufferedReader() = default;
    virtual unsigned ReadDWord() = 0;
    virtual int ReadLine(char* line, int maxChars) = 0;
    virtual bool AtEnd() = 0;
};

template <class Source>
class CBufferedReader final : public IBufferedReader {
public:
    explicit CBufferedReader(Source source) : source(std::move(source)), buffer(64 * 1024) {}

    __attribute__((noinline)) unsigned ReadDWord() override {
        unsigned value = 0;
        if (filled - next >= sizeof value) {
            std::memcpy(&value, buffer.data() + next, sizeof value);
            next += sizeof value;
            return value;
        }
        for (size_t i = 0; i < sizeof value && Fill(); ++i)
            reinterpret_cast<char*>(&value)[i] = buffer[next++];
        return value;
    }

    // The line and its line feed; the buffer needs maxChars + 2 bytes.
    __attribute__((noinline)) int ReadLine(char* line, int maxChars) override {
        int count = 0;
        while (count < maxChars && Fill()) {
            const size_t scan = std::min(filled - next, static_cast<size_t>(maxChars - count));
            const char* start = buffer.data() + next;
            const auto* feed = static_cast<const char*>(std::memchr(start, '\n', scan));
            const size_t take = feed != nullptr ? static_cast<size_t>(feed - start) : scan;
            std::memcpy(line + count, start, take);
            count += static_cast<int>(take);
            next += take;
            if (feed != nullptr) {
                line[count] = '\n';
                ++next;
                line[count + 1] = 0;
                return count;
            }
        }
        line[count] = 0;
        return count;
    }

    bool AtEnd() override { return !Fill(); }

private:
    bool Fill() {
        if (next < filled)
            return true;
        next = 0;
        filled = source.Read(buffer.data(), buffer.size());
        return filled != 0;
    }

    Source source;
    std::vector<char> buffer;
    size_t next = 0, filled = 0;
};

}  // namespace kt::bench
