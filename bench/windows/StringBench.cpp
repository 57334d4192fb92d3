// The string and map figures of the product, the DLL under Wine: copying a
// string of 1 byte and of 1 MiB, Format of a log line against snprintf into a
// stack buffer, and CTMap lookup against std::unordered_map.
#include <cstdio>
#include <string>
#include <unordered_map>
#include <vector>

#include "bench/harness/TimingHarness.h"
#include "kticore/core/Map.h"
#include "kticore/strings/XString.h"

namespace {

constexpr long kIterations = 1000000;

void Copies() {
    for (size_t size : {size_t{1}, size_t{1} << 20}) {
        const CXString string(std::string(size, 'x').c_str());
        const std::string peer(size, 'x');
        const double ours = kt::bench::NanosecondsPerCall(
            [&] {
                CXString copy(string);
                const char* volatile text = copy;
                (void)text;
            },
            size > 1 ? kIterations : kIterations * 10);
        const double theirs = kt::bench::NanosecondsPerCall(
            [&] {
                std::string copy(peer);
                const char* volatile text = copy.data();
                (void)text;
            },
            size > 1 ? 2000 : kIterations * 10);
        char name[32];
        std::snprintf(name, sizeof name, "Copy/%zu", size);
        kt::bench::PrintRatio(name, "std::string", ours, theirs);
    }
}

void Formats() {
    static const char kLogLine[] = "%s=%d (%5.2f) %s";
    CXString line;
    char buffer[256];
    int n = 0;
    const double ours = kt::bench::NanosecondsPerCall(
        [&] { line.Format(kLogLine, "temperature", ++n, 21.5, "celsius"); }, kIterations);
    const double theirs = kt::bench::NanosecondsPerCall(
        [&] {
            std::snprintf(buffer, sizeof buffer, kLogLine, "temperature", ++n, 21.5, "celsius");
        },
        kIterations);
    kt::bench::PrintRatio("Format/logline", "snprintf", ours, theirs);
}

void Lookups() {
    for (size_t count : {100, 1000, 10000}) {
        std::vector<std::string> keys;
        for (size_t i = 0; i < count; ++i)
            keys.push_back("section/value" + std::to_string(i));
        CTMap<const char*, int> map;
        std::unordered_map<std::string, int> peer;
        for (size_t i = 0; i < count; ++i) {
            map.Set(keys[i].c_str(), static_cast<int>(i));
            peer[keys[i]] = static_cast<int>(i);
        }
        size_t next = 0;
        volatile int sink = 0;
        const double ours = kt::bench::NanosecondsPerCall(
            [&] {
                int value = 0;
                map.Lookup(keys[next].c_str(), value);
                sink = value;
                next = next + 1 == count ? 0 : next + 1;
            },
            kIterations);
        const double theirs = kt::bench::NanosecondsPerCall(
            [&] {
                const auto found = peer.find(keys[next]);
                sink = found != peer.end() ? found->second : -1;
                next = next + 1 == count ? 0 : next + 1;
            },
            kIterations);
        char name[32];
        std::snprintf(name, sizeof name, "Lookup/%zu", count);
        kt::bench::PrintRatio(name, "unordered_map", ours, theirs);
    }
}

}  // namespace

int main() {
    kt::bench::PrintRatioHeader();
    Copies();
    Formats();
    Lookups();
    return 0;
}
