// Variant conversion: a prepared number turned into its text form and read
// back through KTVariantChangeType (peer: std::to_chars of a prepared number
// in the same form, %g's six significant digits for a real, and
// std::from_chars, into stack buffers). Target: at most 3x; the variant owns
// its text, an array it reuses when the next text fits.
#include <benchmark/benchmark.h>

#include <charconv>
#include <cstddef>
#include <type_traits>

#include "bench/harness/RatioReporter.h"
#include "kticore/values/Variant.h"

namespace {

constexpr int kShortRealDigits = 6;  // printf's %g
constexpr size_t kValues = 64;

template <class Number>
Number ValueAt(size_t i) {
    return static_cast<Number>(static_cast<double>(i) * 1379.25 - 20000.125);
}

template <class Number, unsigned short Kind>
void TextRoundTrip_kticore(benchmark::State& state) {
    CKTVariant numbers[kValues];
    for (size_t i = 0; i < kValues; ++i)
        numbers[i] = ValueAt<Number>(i);
    CKTVariant text, back;
    size_t i = 0;
    for (auto _ : state) {
        KTVariantChangeType(&text, &numbers[i++ % kValues], KTVT_STR);
        KTVariantChangeType(&back, &text, Kind);
        benchmark::DoNotOptimize(back.dblVal);
    }
}

template <class Number>
void ToChars(char* first, char* last, Number value, char*& end) {
    if constexpr (std::is_floating_point_v<Number>)
        end = std::to_chars(first, last, value, std::chars_format::general, kShortRealDigits).ptr;
    else
        end = std::to_chars(first, last, value).ptr;
}

// Like the variants, the numbers are prepared before the clock starts.
template <class Number>
void TextRoundTrip_charconv(benchmark::State& state) {
    Number numbers[kValues];
    for (size_t i = 0; i < kValues; ++i)
        numbers[i] = ValueAt<Number>(i);
    char buffer[32];
    Number number{};
    size_t i = 0;
    for (auto _ : state) {
        char* end = nullptr;
        ToChars(buffer, buffer + sizeof buffer, numbers[i++ % kValues], end);
        std::from_chars(buffer, end, number);
        benchmark::DoNotOptimize(number);
    }
}

void RealTextRoundTrip_kticore(benchmark::State& state) {
    TextRoundTrip_kticore<double, KTVT_DOUBLE>(state);
}
void RealTextRoundTrip_charconv(benchmark::State& state) { TextRoundTrip_charconv<double>(state); }
void IntegerTextRoundTrip_kticore(benchmark::State& state) {
    TextRoundTrip_kticore<int, KTVT_INT>(state);
}
void IntegerTextRoundTrip_charconv(benchmark::State& state) { TextRoundTrip_charconv<int>(state); }

BENCHMARK(RealTextRoundTrip_kticore);
BENCHMARK(RealTextRoundTrip_charconv);
BENCHMARK(IntegerTextRoundTrip_kticore);
BENCHMARK(IntegerTextRoundTrip_charconv);

}  // namespace

int main(int argc, char** argv) { return kt::bench::RunWithRatios(argc, argv); }
