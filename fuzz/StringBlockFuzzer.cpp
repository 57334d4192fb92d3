// Arbitrary bytes as a string table block, rewritten from a block of exactly
// their size. A block whose entries do not fill it is served as it stands;
// any other comes out with as many entries, filling the new block exactly.
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "fuzz/FuzzStreams.h"
#include "platform/Resources.h"
#include "translation/Rewriting.h"
#include "translation/SuppDictionary.h"

namespace {

using kt::fuzz::Check;

constexpr char kBlockKey[] = "fuzz.dll#3#1";
constexpr size_t kMalformed = SIZE_MAX;

void PrepareDictionary() {
    kt::CSuppDictionary& dictionary = kt::SuppDictionary();
    dictionary.Add("A", std::string(3000, 'L').c_str());
    dictionary.Add("OK", "Okay");
    dictionary.Add("fuzz.dll#3#1A", "B");
}

// The entries of a block as the format counts them; kMalformed when the last
// one runs past the end.
size_t EntriesOf(const std::uint8_t* bytes, size_t size, bool& anyText) {
    size_t entries = 0;
    for (size_t at = 0; at < size; ++entries) {
        if (size - at < 2)
            return kMalformed;
        const size_t length = bytes[at] | bytes[at + 1] << 8;
        anyText = anyText || length != 0;
        at += 2;
        if (2 * length > size - at)
            return kMalformed;
        at += 2 * length;
    }
    return entries;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    static const bool prepared = (PrepareDictionary(), true);
    Check(prepared);
    std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[size]);
    if (size != 0)
        std::memcpy(exact.get(), data, size);
    DWORD rewrittenSize = 0;
    void* rewritten = kt::RewriteStringBlock(exact.get(), size, kBlockKey, &rewrittenSize);
    bool anyText = false;
    const size_t entries = EntriesOf(data, size, anyText);
    if (entries == kMalformed || !anyText) {
        Check(rewritten == nullptr);
        return 0;
    }
    Check(rewritten != nullptr);
    bool anyTextAgain = false;
    Check(EntriesOf(static_cast<const std::uint8_t*>(rewritten), rewrittenSize, anyTextAgain) == entries);
    kt::sys::FreeLocalBlock(rewritten);
    return 0;
}
