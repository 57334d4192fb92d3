// Rewriting a 50-control extended dialog with a layout: both passes, every
// caption translated, every control moved. The peer is what any rewrite
// costs at least: a new block of the template's size and a copy into it.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "bench/harness/RatioReporter.h"
#include "tests/translation/TemplateBuilder.h"
#include "translation/Lookup.h"
#include "translation/Rewriting.h"
#include "translation/SuppDictionary.h"

namespace {

constexpr int kControls = 50;
constexpr char kDialogKey[] = "bench.dll#1#100";

kt::test::WideString Wide(const std::string& text) { return kt::test::WideString(text.begin(), text.end()); }

kt::test::Bytes FiftyControlDialog() {
    kt::test::DialogShape dialog;
    dialog.extended = true;
    dialog.style |= kt::test::kDsSetFont;
    dialog.title = Wide("Options");
    dialog.font = {8, 400, 0, 0, Wide("MS Shell Dlg")};
    for (int i = 0; i < kControls; ++i) {
        kt::test::ItemShape item;
        item.id = static_cast<std::uint32_t>(1000 + i);
        item.windowClass = kt::test::Field::Ordinal(i % 2 == 0 ? kt::test::kButton : kt::test::kStatic);
        item.title = kt::test::Field::Text(Wide("Caption " + std::to_string(i)));
        item.x = 7, item.y = static_cast<std::int16_t>(7 + 12 * i), item.cx = 100, item.cy = 10;
        dialog.items.push_back(item);
    }
    return kt::test::TemplateBuilder::Build(dialog);
}

unsigned PrepareDictionary() {
    kt::CSuppDictionary& dictionary = kt::SuppDictionary();
    dictionary.Add("Options", "Einstellungen");
    auto* layout = new kt::KTDlgPos;
    layout->size = {40, 10};
    for (int i = 0; i < kControls; ++i) {
        const std::string caption = "Caption " + std::to_string(i);
        dictionary.Add(caption.c_str(), ("Beschriftung Nummer " + std::to_string(i)).c_str());
        layout->items.Set(i, kt::CIRect{2, 1, 30, 1});
    }
    const unsigned hash = Supp_HashKey(kDialogKey);
    dictionary.dialogs.Set(static_cast<int>(hash), layout);
    return hash;
}

void RewriteDialog_kticore(benchmark::State& state) {
    static const unsigned layout = PrepareDictionary();
    const kt::test::Bytes dialog = FiftyControlDialog();
    for (auto _ : state) {
        unsigned size = 0;
        void* rewritten = kt::LayoutDialogTemplate(dialog.data(), dialog.size(), layout, &size, kDialogKey);
        benchmark::DoNotOptimize(rewritten);
        std::free(rewritten);
    }
}

void RewriteDialog_malloc_memcpy(benchmark::State& state) {
    const kt::test::Bytes dialog = FiftyControlDialog();
    for (auto _ : state) {
        void* copy = std::malloc(dialog.size());
        std::memcpy(copy, dialog.data(), dialog.size());
        benchmark::DoNotOptimize(copy);
        std::free(copy);
    }
}

BENCHMARK(RewriteDialog_kticore);
BENCHMARK(RewriteDialog_malloc_memcpy);

}  // namespace

int main(int argc, char** argv) { return kt::bench::RunWithRatios(argc, argv); }
