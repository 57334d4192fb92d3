// Parameter trees: reading a generated 50 MB text of 5,000 sections and
// 500,000 values of mixed kinds into a memory tree, against Debian's inih
// parsing the same file in the same run (inih builds no tree and reads no
// markers); writing the tree back as text; saving it to and loading it from a
// memory stream; and looking a value up by a three-level path, against a
// std::unordered_map of the full paths.
#include <benchmark/benchmark.h>
#include <ini.h>

#include <cstdio>
#include <string>
#include <unordered_map>
#include <vector>

#include "bench/harness/RatioReporter.h"
#include "kticore/params/ParamTools.h"

namespace {

constexpr int kTopSections = 50;
constexpr int kSubSections = 100;  // in each top section: 5,000 sections
constexpr int kValuesPerSection = 100;  // 500,000 values

const char* const kTextPath = "/tmp/kticore_params_bench.ini";
const char* const kWrittenPath = "/tmp/kticore_params_bench_out.ini";

std::basic_string<KTWCHAR> Wide(const char* text) {
    const std::string narrow(text);
    return std::basic_string<KTWCHAR>(narrow.begin(), narrow.end());
}

// One value line of a mixed kind, about 100 bytes on average.
std::string ValueLine(int section, int index) {
    const std::string name = "setting_value_" + std::to_string(index);
    switch (index % 6) {
    case 0: return name + "=i" + std::to_string(section * 1000 + index);
    case 1: return name + "=sThe quick brown fox jumps over the lazy dog, section " + std::to_string(section) +
                   ", line " + std::to_string(index) + " of the generated text for reading, with a few more " +
                   "words behind it to make a longer line of text, and a few more again.";
    case 2: return name + "=R" + std::to_string(section + index / 7.0);
    case 3: return name + "=T" + std::to_string(index) + ".125,20.5,640.25,480.75";
    case 4: return name + "=x000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F2021222324"
                          "25262728292A2B2C2D2E2F303132333435363738393A3B3C3D3E3F";
    default: return name + "=sC:\\Program Files\\Application\\Data\\Settings\\Profiles\\Current User\\profile_" +
                    std::to_string(section) + "_" + std::to_string(index) + "_settings_backup_copy.dat";
    }
}

const std::string& Text() {
    static const std::string text = [] {
        std::string all;
        all.reserve(60u << 20);
        int section = 0;
        for (int top = 0; top < kTopSections; ++top) {
            for (int sub = 0; sub < kSubSections; ++sub, ++section) {
                all += "[\\top" + std::to_string(top) + "\\sub" + std::to_string(sub) + "]\r\n";
                for (int i = 0; i < kValuesPerSection; ++i)
                    all += ValueLine(section, i) + "\r\n";
            }
        }
        std::FILE* out = std::fopen(kTextPath, "wb");
        std::fwrite(all.data(), 1, all.size(), out);
        std::fclose(out);
        return all;
    }();
    return text;
}

IParam* ReadTree() {
    IParam* tree = new_MemParam();
    Param_IniFile2Param(Wide(kTextPath).c_str(), tree);
    return tree;
}

void ReadText_kticore(benchmark::State& state) {
    const auto path = Wide(kTextPath);
    Text();
    for (auto _ : state) {
        IParam* tree = new_MemParam();
        Param_IniFile2Param(path.c_str(), tree);
        state.PauseTiming();
        tree->Release();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(Text().size()));
}

int CountValue(void* user, const char*, const char*, const char*) {
    ++*static_cast<long*>(user);
    return 1;
}

void ReadText_inih(benchmark::State& state) {
    Text();
    for (auto _ : state) {
        long values = 0;
        ini_parse(kTextPath, CountValue, &values);
        benchmark::DoNotOptimize(values);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(Text().size()));
}

void WriteText_kticore(benchmark::State& state) {
    Text();
    IParam* tree = ReadTree();
    const auto path = Wide(kWrittenPath);
    for (auto _ : state)
        Param_Param2IniFile(tree, path.c_str());
    tree->Release();
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(Text().size()));
}

void SaveStream_kticore(benchmark::State& state) {
    Text();
    IParam* tree = ReadTree();
    std::int64_t bytes = 0;
    for (auto _ : state) {
        IXStream* stream = new_StreamOnMemory();
        SaveParamToXStream(stream, tree);
        bytes += stream->GetLength();
        state.PauseTiming();
        stream->Release();
        state.ResumeTiming();
    }
    tree->Release();
    state.SetBytesProcessed(bytes);
}

void LoadStream_kticore(benchmark::State& state) {
    Text();
    IParam* tree = ReadTree();
    IXStream* stream = new_StreamOnMemory();
    SaveParamToXStream(stream, tree);
    tree->Release();
    for (auto _ : state) {
        stream->Seek(0, 0);
        IParam* loaded = new_MemParam();
        LoadParamFromXStream(stream, loaded);
        state.PauseTiming();
        loaded->Release();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(stream->GetLength()));
    stream->Release();
}

// Paths of values that exist, in an order that jumps about the tree.
std::vector<std::string> LookupPaths() {
    std::vector<std::string> paths;
    for (unsigned i = 0; i < 4096; ++i) {
        const unsigned mixed = i * 2654435761u;
        paths.push_back("top" + std::to_string(mixed % kTopSections) + "\\sub" +
                        std::to_string(mixed / 7 % kSubSections) + "\\setting_value_" +
                        std::to_string(mixed / 13 % kValuesPerSection));
    }
    return paths;
}

void Lookup_kticore(benchmark::State& state) {
    Text();
    IParam* tree = ReadTree();
    const auto paths = LookupPaths();
    size_t next = 0;
    CKTVariant value;
    for (auto _ : state) {
        benchmark::DoNotOptimize(tree->GetValue(paths[next].c_str(), &value));
        next = (next + 1) % paths.size();
    }
    tree->Release();
}

void Lookup_unorderedmap(benchmark::State& state) {
    Text();
    IParam* tree = ReadTree();
    std::unordered_map<std::string, CKTVariant> values;
    for (int top = 0; top < kTopSections; ++top)
        for (int sub = 0; sub < kSubSections; ++sub)
            for (int i = 0; i < kValuesPerSection; ++i) {
                const std::string path = "top" + std::to_string(top) + "\\sub" + std::to_string(sub) +
                                         "\\setting_value_" + std::to_string(i);
                tree->GetValue(path.c_str(), &values[path]);
            }
    tree->Release();
    const auto paths = LookupPaths();
    size_t next = 0;
    CKTVariant value;
    for (auto _ : state) {
        const auto found = values.find(paths[next]);
        KTVariantCopy(&value, &found->second);
        benchmark::DoNotOptimize(value.vt);
        next = (next + 1) % paths.size();
    }
}

BENCHMARK(ReadText_kticore)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadText_inih)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteText_kticore)->Unit(benchmark::kMillisecond);
BENCHMARK(SaveStream_kticore)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadStream_kticore)->Unit(benchmark::kMillisecond);
BENCHMARK(Lookup_kticore);
BENCHMARK(Lookup_unorderedmap);

}  // namespace

int main(int argc, char** argv) { return kt::bench::RunWithRatios(argc, argv); }
