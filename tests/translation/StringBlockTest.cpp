// String table blocks: each entry translated in its place, in a new block.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "platform/Resources.h"
#include "tests/support/WideText.h"
#include "tests/translation/TestDictionary.h"
#include "translation/Rewriting.h"

namespace kt::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Entries = std::vector<WideString>;

Bytes BlockOf(const Entries& entries) {
    Bytes block;
    const auto word = [&](std::uint16_t value) {
        block.push_back(static_cast<std::uint8_t>(value & 0xFF));
        block.push_back(static_cast<std::uint8_t>(value >> 8));
    };
    for (const WideString& entry : entries) {
        word(static_cast<std::uint16_t>(entry.size()));
        for (KTWCHAR unit : entry)
            word(static_cast<std::uint16_t>(unit));
    }
    return block;
}

// The entries of a block the library wrote, which must fill it exactly.
Entries EntriesOf(const void* block, DWORD size) {
    const auto* bytes = static_cast<const std::uint8_t*>(block);
    const auto word = [&](size_t at) { return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8); };
    Entries entries;
    size_t at = 0;
    while (at + 2 <= size) {
        const std::uint16_t length = word(at);
        at += 2;
        WideString entry;
        for (std::uint16_t i = 0; i < length && at + 2 <= size; ++i, at += 2)
            entry += static_cast<KTWCHAR>(word(at));
        entries.push_back(entry);
    }
    EXPECT_EQ(at, size);
    return entries;
}

// The block rewritten from a copy of exactly its size; null where the
// library serves the original.
std::unique_ptr<Entries> Rewrite(const Bytes& block, const char* prefix = nullptr) {
    std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[block.size()]);
    std::copy(block.begin(), block.end(), exact.get());
    DWORD size = 0;
    void* rewritten = RewriteStringBlock(exact.get(), block.size(), prefix, &size);
    if (rewritten == nullptr)
        return nullptr;
    auto entries = std::make_unique<Entries>(EntriesOf(rewritten, size));
    sys::FreeLocalBlock(rewritten);
    return entries;
}

TEST(StringBlockRewrite, TranslatesEveryEntryInItsPlace) {
    AddTranslations({{"sb.One", "Eins"}, {"sb.Two", "Zwei, laenger"}, {"app.dll#3#7sb.Two", "Zwo"}});
    const Entries source = {W(""), W("sb.One"), W(""), W("sb.Two"), W("sb.Missing"), W("")};
    const auto plain = Rewrite(BlockOf(source));
    ASSERT_TRUE(plain);
    EXPECT_EQ(*plain, (Entries{W(""), W("Eins"), W(""), W("Zwei, laenger"), W("sb.Missing"), W("")}));
    const auto keyed = Rewrite(BlockOf(source), "app.dll#3#7");
    ASSERT_TRUE(keyed);
    EXPECT_EQ((*keyed)[3], W("Zwo"));
}

TEST(StringBlockRewrite, ABlockWithoutTextIsServedAsItStands) {
    EXPECT_FALSE(Rewrite(BlockOf(Entries(16))));
    EXPECT_FALSE(Rewrite(Bytes()));
}

// Entries up to 1,024 characters are looked up; longer ones stand as they
// are, even where the dictionary has them. A translation may be longer.
TEST(StringBlockRewrite, EntriesBeyond1024CharactersPassUnchanged) {
    const std::string at1024(1024, 'a'), at1025(1025, 'b'), long4000(4000, 'c');
    const std::string longTranslation(3000, 'L');
    AddTranslations({{at1024.c_str(), "short"}, {at1025.c_str(), "short"}, {"sb.Grows", longTranslation.c_str()}});
    const auto rewritten = Rewrite(BlockOf({W(at1024), W(at1025), W("sb.Grows")}));
    ASSERT_TRUE(rewritten);
    EXPECT_EQ(*rewritten, (Entries{W("short"), W(at1025), W(longTranslation)}));
    const auto keyed = Rewrite(BlockOf({W(at1024)}), "app.dll#3#1");
    ASSERT_TRUE(keyed);
    EXPECT_EQ(*keyed, Entries{W("short")});

    const Entries big(16, W(long4000));
    const auto whole = Rewrite(BlockOf(big));
    ASSERT_TRUE(whole);
    EXPECT_EQ(*whole, big);
}

// A block cut inside an entry, or of an odd size, is served as it stands;
// cut between entries it is a shorter block, rewritten.
TEST(StringBlockRewriteBounds, BlocksCutInsideAnEntryAreServedAsTheyStand) {
    AddTranslations({{"sb.Cut", "Geschnitten"}});
    const Entries source = {W("sb.Cut"), W(""), W("sb.Cut, too long to be found")};
    const Bytes block = BlockOf(source);
    std::vector<size_t> boundaries = {0};
    for (const WideString& entry : source)
        boundaries.push_back(boundaries.back() + 2 + 2 * entry.size());
    for (size_t cut = 1; cut < block.size(); ++cut) {
        const auto rewritten = Rewrite(Bytes(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(cut)));
        const size_t whole = static_cast<size_t>(std::find(boundaries.begin(), boundaries.end(), cut) - boundaries.begin());
        if (whole == boundaries.size()) {
            EXPECT_FALSE(rewritten) << cut;
        } else {
            ASSERT_TRUE(rewritten) << cut;
            EXPECT_EQ(rewritten->size(), whole) << cut;
        }
    }
}

}  // namespace
}  // namespace kt::test
