// The dictionary: loading a generated `wld` file of 100,000 pairs (plain and
// resource keys, a third of them Russian in code page 1251, some values with
// escapes) into a dictionary, against reading the same file into a
// std::unordered_map<std::u16string, std::u16string> with the same line and
// escape rules; and a lookup that hits and one that misses, against the
// map's find.
#include <benchmark/benchmark.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unordered_map>
#include <vector>

#include "bench/harness/RatioReporter.h"
#include "kticore/translation/Translation.h"
#include "translation/SuppDictionary.h"
#include "translation/WldFile.h"

namespace {

constexpr int kPairs = 100000;
const char* const kWldPath = "/tmp/kticore_translation_bench.wld";

std::u16string Wide(const std::string& ascii) { return std::u16string(ascii.begin(), ascii.end()); }

// Russian text in code page 1251, where 0xC0 to 0xFF are А to я.
std::string Russian(int n) {
    static const unsigned char kWord[] = {0xD2, 0xE5, 0xEA, 0xF1, 0xF2};  // Текст
    return std::string(reinterpret_cast<const char*>(kWord), sizeof kWord) + " " +
           std::to_string(n);
}

std::string Key(int n) {
    const std::string text = n % 3 == 2 ? Russian(n) : "Source text number " + std::to_string(n);
    if (n % 2 == 0)
        return "application.dll#3#" + std::to_string(n / 16 + 1) + text;
    return text;
}

std::string Value(int n) {
    if (n % 3 == 2)
        return Russian(n) + "\\n" + Russian(n + 1);
    return "Translation of text number " + std::to_string(n) + (n % 5 == 0 ? "\\twith a tab" : "");
}

void WriteFile() {
    static const bool written = [] {
        std::string all = "; generated\n\"KT_WLD_LANG_ID\"\n\"1049\"\n";
        for (int n = 0; n < kPairs; ++n)
            all += "\"" + Key(n) + "\"\n\"" + Value(n) + "\"\n";
        std::FILE* out = std::fopen(kWldPath, "wb");
        std::fwrite(all.data(), 1, all.size(), out);
        std::fclose(out);
        return true;
    }();
    benchmark::DoNotOptimize(written);
}

// The peer's conversion: ASCII, and the Russian letters of code page 1251.
std::u16string From1251(const std::string& text) {
    std::u16string wide;
    wide.reserve(text.size());
    for (const unsigned char byte : text)
        wide += static_cast<char16_t>(byte >= 0xC0 ? byte + 0x350 : byte);
    return wide;
}

std::string UndoEscapes(const std::string& text) {
    std::string out;
    for (size_t i = 0; i < text.size();) {
        if (text[i] != '\\') {
            out += text[i++];
            continue;
        }
        while (i < text.size() && text[i] == '\\')
            ++i;
        if (i == text.size())
            break;
        const char c = text[i];
        if (c == 'n' || c == 'r' || c == 't') {
            out += c == 'n' ? '\n' : c == 'r' ? '\r' : '\t';
            ++i;
        } else {
            out += '\\';
        }
    }
    return out;
}

// The same rules on a file read whole: quoted lines pair up, others are
// skipped, an empty line where a key is due ends.
std::unordered_map<std::u16string, std::u16string> ReadIntoMap() {
    std::FILE* in = std::fopen(kWldPath, "rb");
    std::fseek(in, 0, SEEK_END);
    std::string text(static_cast<size_t>(std::ftell(in)), '\0');
    std::fseek(in, 0, SEEK_SET);
    benchmark::DoNotOptimize(std::fread(text.data(), 1, text.size(), in));
    std::fclose(in);
    std::unordered_map<std::u16string, std::u16string> map;
    std::string key;
    bool keyDue = true;
    for (size_t start = 0; start < text.size();) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        if (end == start && keyDue)
            break;
        size_t first = start;
        size_t last = end;
        while (first < last && std::isspace(static_cast<unsigned char>(text[first])))
            ++first;
        while (last > first && std::isspace(static_cast<unsigned char>(text[last - 1])))
            --last;
        if (last - first >= 2 && text[first] == '"') {
            std::string string = text.substr(first + 1, last - first - 2);
            if (keyDue) {
                key = std::move(string);
            } else {
                map.emplace(From1251(UndoEscapes(key)), From1251(UndoEscapes(string)));
            }
            keyDue = !keyDue;
        }
        start = end + 1;
    }
    return map;
}

void Load_kticore(benchmark::State& state) {
    WriteFile();
    const std::u16string path = Wide(kWldPath);
    for (auto _ : state) {
        state.PauseTiming();
        auto* dictionary = new kt::CSuppDictionary;
        state.ResumeTiming();
        kt::LoadWldFile(*dictionary, path.c_str());
        benchmark::DoNotOptimize(dictionary->texts.GetCount());
        state.PauseTiming();
        delete dictionary;
        dictionary = nullptr;
        state.ResumeTiming();
    }
}

void Load_unorderedmap(benchmark::State& state) {
    WriteFile();
    for (auto _ : state) {
        auto map = ReadIntoMap();
        benchmark::DoNotOptimize(map.size());
        state.PauseTiming();
        map.clear();
        state.ResumeTiming();
    }
}

// Keys that exist, plain and prefixed, in an order that jumps about; and
// texts that do not.
std::vector<std::u16string> HitKeys() {
    std::vector<std::u16string> keys;
    for (unsigned i = 0; i < 4096; ++i)
        keys.push_back(From1251(Key(static_cast<int>(i * 2654435761u % kPairs))));
    return keys;
}

std::vector<std::u16string> MissKeys() {
    std::vector<std::u16string> keys;
    for (unsigned i = 0; i < 4096; ++i)
        keys.push_back(Wide("Text that no file defines " + std::to_string(i)));
    return keys;
}

void LoadedDictionary() {
    static const bool loaded = [] {
        WriteFile();
        return Supp_Init(Wide(kWldPath).c_str()) == 1;
    }();
    if (!loaded)
        std::abort();
}

template <std::vector<std::u16string> (*Keys)()>
void Lookup_kticore(benchmark::State& state) {
    LoadedDictionary();
    const auto keys = Keys();
    size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Supp_Translate(keys[next].c_str()));
        next = (next + 1) % keys.size();
    }
}

template <std::vector<std::u16string> (*Keys)()>
void Lookup_unorderedmap(benchmark::State& state) {
    WriteFile();
    const auto map = ReadIntoMap();
    const auto keys = Keys();
    size_t next = 0;
    for (auto _ : state) {
        const auto found = map.find(keys[next]);
        benchmark::DoNotOptimize(found == map.end() ? keys[next].c_str() : found->second.c_str());
        next = (next + 1) % keys.size();
    }
}

void LookupHit_kticore(benchmark::State& state) { Lookup_kticore<HitKeys>(state); }
void LookupHit_unorderedmap(benchmark::State& state) { Lookup_unorderedmap<HitKeys>(state); }
void LookupMiss_kticore(benchmark::State& state) { Lookup_kticore<MissKeys>(state); }
void LookupMiss_unorderedmap(benchmark::State& state) { Lookup_unorderedmap<MissKeys>(state); }

BENCHMARK(Load_kticore)->Unit(benchmark::kMillisecond);
BENCHMARK(Load_unorderedmap)->Unit(benchmark::kMillisecond);
BENCHMARK(LookupHit_kticore);
BENCHMARK(LookupHit_unorderedmap);
BENCHMARK(LookupMiss_kticore);
BENCHMARK(LookupMiss_unorderedmap);

}  // namespace

int main(int argc, char** argv) { return kt::bench::RunWithRatios(argc, argv); }
