// Arbitrary bytes as a dialog template, classic or extended as their word at
// offset 2 says, rewritten with and without the layout of a dialog that the
// dictionary holds. The bytes lie in a block of exactly their size, so that
// a read beyond them shows. Whatever the library makes must read again as a
// template: rewritten once more, it is not handed back.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "fuzz/FuzzStreams.h"
#include "translation/Lookup.h"
#include "translation/Rewriting.h"
#include "translation/SuppDictionary.h"

namespace {

using kt::fuzz::Check;

constexpr char kDialogKey[] = "fuzz.dll#1#1";

// Translations that grow, shrink or leave a text, keyed and plain, and a
// layout that moves the first controls and the dialog's size.
unsigned PrepareDictionary() {
    kt::CSuppDictionary& dictionary = kt::SuppDictionary();
    dictionary.Add("A", "a translation much longer than its key");
    dictionary.Add("OK", "Okay");
    dictionary.Add("Cancel", "");
    dictionary.Add("fuzz.dll#1#1A", "B");
    auto* layout = new kt::KTDlgPos;
    layout->size = {40, -20};
    for (int position = 0; position < 4; ++position)
        layout->items.Set(position, kt::CIRect{position, -position, 3 * position, 100});
    const unsigned hash = Supp_HashKey(kDialogKey);
    dictionary.dialogs.Set(static_cast<int>(hash), layout);
    return hash;
}

void CheckReadsAgain(void* rewritten, unsigned size) {
    unsigned sizeAgain = 0;
    void* again = kt::RewriteDialogTemplate(rewritten, size, &sizeAgain, nullptr);
    Check(again != nullptr && again != rewritten && sizeAgain != 0);
    std::free(again);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    static const unsigned layout = PrepareDictionary();
    std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[size]);
    if (size != 0)
        std::memcpy(exact.get(), data, size);
    for (bool withLayout : {false, true}) {
        unsigned rewrittenSize = 0;
        void* rewritten = withLayout ? kt::LayoutDialogTemplate(exact.get(), size, layout, &rewrittenSize, kDialogKey)
                                     : kt::RewriteDialogTemplate(exact.get(), size, &rewrittenSize, nullptr);
        if (rewritten == exact.get()) {
            Check(rewrittenSize == 0);
            continue;
        }
        Check(rewritten != nullptr);
        CheckReadsAgain(rewritten, rewrittenSize);
        std::free(rewritten);
    }
    return 0;
}
