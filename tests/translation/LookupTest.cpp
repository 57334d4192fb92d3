// The lookups of the dictionary. The dictionary is one object per process and
// nothing removes entries, so each test uses keys of its own.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kticore/translation/Translation.h"
#include "tests/support/WideText.h"
#include "strings/WideSteps.h"
#include "translation/Lookup.h"
#include "translation/SuppDictionary.h"

namespace kt::test {
namespace {

void Define(const char* key, const char* value) { SuppDictionary().Add(key, value); }

TEST(Lookup, KeyedTextIsFoundBeforeThePlainTextAndThenTheTextItself) {
    Define("app.dll#3#1lookup-order", "keyed");
    Define("lookup-order", "plain");
    const WideString prefix = W("app.dll#3#1");
    const WideString otherPrefix = W("app.dll#3#2");
    const WideString text = W("lookup-order");
    const WideString unknown = W("lookup-order-unknown");
    EXPECT_EQ(Wide(Supp_Translate(text.c_str(), prefix.c_str())), W("keyed"));
    EXPECT_EQ(Wide(Supp_Translate(text.c_str(), otherPrefix.c_str())), W("plain"));
    EXPECT_EQ(Wide(Supp_Translate(text.c_str(), nullptr)), W("plain"));
    EXPECT_EQ(Supp_Translate(unknown.c_str(), prefix.c_str()), unknown.c_str());
    EXPECT_EQ(Wide(Supp_LookupKeyedW(text.c_str(), prefix.c_str())), W("keyed"));
    EXPECT_EQ(Supp_LookupKeyedW(unknown.c_str(), prefix.c_str()), unknown.c_str());
}

TEST(Lookup, EmptyOrNullTextGivesNull) {
    EXPECT_EQ(Supp_Translate(KTW("")), nullptr);
    EXPECT_EQ(Supp_Translate(static_cast<const KTWCHAR*>(nullptr)), nullptr);
    EXPECT_EQ(Supp_Translate(static_cast<const char*>(nullptr)), nullptr);
    EXPECT_EQ(Supp_Translate(""), nullptr);
    EXPECT_EQ(Supp_Translate(KTW(""), KTW("app.dll#3#1")), nullptr);
    EXPECT_EQ(Supp_LookupW(KTW(""), 0), nullptr);
    EXPECT_EQ(Supp_LookupA("", 0), nullptr);
}

TEST(Lookup, WhatIsNotFoundGivesTheTextUnlessExact) {
    const WideString missing = W("lookup-missing");
    EXPECT_EQ(Supp_LookupW(missing.c_str(), 0), missing.c_str());
    EXPECT_EQ(Supp_LookupW(missing.c_str(), 1), nullptr);
    const char narrow[] = "lookup-missing";
    EXPECT_EQ(Supp_LookupA(narrow, 0), narrow);
    EXPECT_EQ(Supp_LookupA(narrow, 1), nullptr);
}

TEST(Lookup, NarrowTextJoinsTheDictionaryAndKeepsItsPointer) {
    const KTWCHAR* first = Supp_Translate("lookup-gathered");
    EXPECT_EQ(Wide(first), W("lookup-gathered"));
    EXPECT_EQ(Supp_Translate("lookup-gathered"), first);
    EXPECT_EQ(Supp_LookupW(W("lookup-gathered").c_str(), 1), first);

    Define("lookup-defined", "defined");
    const KTWCHAR* translated = Supp_Translate("lookup-defined");
    EXPECT_EQ(Wide(translated), W("defined"));
    EXPECT_EQ(Supp_Translate("lookup-defined"), translated);
}

TEST(Lookup, NarrowLookupGivesTheValueAsTheFileHeldIt) {
    Define("lookup-narrow", "\xC4\xE0");  // no conversion in any code page
    EXPECT_STREQ(Supp_LookupA("lookup-narrow", 1), "\xC4\xE0");
    Define("lookup-narrow-empty", "");
    EXPECT_EQ(Supp_LookupA("lookup-narrow-empty", 1), nullptr);
}

TEST(Lookup, AnEmptyValueTranslatesToItsKey) {
    Define("lookup-empty-value", "");
    EXPECT_EQ(Wide(Supp_Translate(W("lookup-empty-value").c_str())), W("lookup-empty-value"));
}

TEST(Lookup, KeyedTranslationInABufferIsCutWithoutTerminatorAndMeasured) {
    Define("lookup-buffer", "0123456789");
    KTWCHAR buffer[8] = {};
    const WideString text = W("lookup-buffer");
    std::char_traits<KTWCHAR>::copy(buffer, KTW("lookup-"), 8);
    EXPECT_EQ(Supp_TranslateKeyedW(buffer, 8, nullptr, 1), 7u);  // its own text
    EXPECT_EQ(Wide(buffer), W("lookup-"));

    KTWCHAR cut[16];
    std::char_traits<KTWCHAR>::copy(cut, text.c_str(), text.size() + 1);
    EXPECT_EQ(Supp_TranslateKeyedW(cut, 4, nullptr, 1), 10u);
    EXPECT_EQ(Wide(cut), text) << "measuring leaves the buffer";
    EXPECT_EQ(Supp_TranslateKeyedW(cut, 4, nullptr, 0), 10u);
    EXPECT_EQ(Wide(cut), W("0123up-buffer")) << "no terminator behind the cut";

    char narrow[32] = "lookup-buffer";
    EXPECT_EQ(Supp_TranslateKeyedA(narrow, sizeof narrow, "none#3#1", 0), 10u);
    EXPECT_STREQ(narrow, "0123456789");
    EXPECT_EQ(Supp_TranslateKeyedW(buffer, 8, KTW("x"), 0), 7u);
    char empty[4] = "";
    EXPECT_EQ(Supp_TranslateKeyedA(empty, sizeof empty, nullptr, 0), 0u);
}

TEST(Lookup, KeyedBufferPrefersThePrefixedText) {
    Define("mod.dll#2#7lookup-menu", "prefixed");
    Define("lookup-menu", "plain");
    KTWCHAR buffer[32];
    const WideString text = W("lookup-menu");
    std::char_traits<KTWCHAR>::copy(buffer, text.c_str(), text.size() + 1);
    EXPECT_EQ(Supp_TranslateKeyedW(buffer, 32, W("mod.dll#2#7").c_str(), 0), 8u);
    EXPECT_EQ(Wide(buffer), W("prefixed"));
    char narrow[32] = "lookup-menu";
    EXPECT_EQ(Supp_TranslateKeyedA(narrow, sizeof narrow, "mod.dll#2#8", 0), 5u);
    EXPECT_STREQ(narrow, "plain");
}

// The wide keyed lookup finds prefix + text by joining their hashes: texts
// of every length the hash takes in steps of four, and the key limit, where
// prefix and text of 1,024 units go to the plain text.
TEST(Lookup, KeyedBufferFindsEveryLengthOfTextUpToTheKeyLimit) {
    const std::string prefix = "join.dll#3#1";
    const std::string atLimit(1023 - prefix.size(), 'j');
    const std::string pastLimit = atLimit + "j";
    Define((prefix + atLimit).c_str(), "at limit");
    Define((prefix + pastLimit).c_str(), "past limit, keyed");
    Define(pastLimit.c_str(), "past limit, plain");
    std::vector<std::pair<std::string, std::string>> cases = {{atLimit, "at limit"},
                                                              {pastLimit, "past limit, plain"}};
    for (size_t length = 1; length <= 9; ++length) {
        const std::string text = std::string("abcdefghi").substr(0, length);
        const std::string translation = "joined " + std::to_string(length);
        Define((prefix + text).c_str(), translation.c_str());
        cases.emplace_back(text, translation);
    }
    for (const auto& [text, translation] : cases) {
        std::vector<KTWCHAR> buffer(1100);
        const WideString wide = W(text.c_str());
        std::char_traits<KTWCHAR>::copy(buffer.data(), wide.c_str(), wide.size() + 1);
        EXPECT_EQ(Supp_TranslateKeyedW(buffer.data(), 1100, W(prefix.c_str()).c_str(), 0), translation.size());
        EXPECT_EQ(Wide(buffer.data()), W(translation.c_str())) << text.size();
    }
}

// A key is its hash: a text that only shares the hash of a key finds its
// entry through the keyed lookup as through the plain one.
TEST(Lookup, KeyedBufferFindsAnEntryByItsHashAlone) {
    // aeaea and bagab have one hash (h = h * 257 + c in 32 bits).
    Define("lookup-aeaea", "first");
    KTWCHAR buffer[32];
    std::char_traits<KTWCHAR>::copy(buffer, W("lookup-bagab").c_str(), 13);
    EXPECT_EQ(Supp_TranslateKeyedW(buffer, 32, W("other.dll#3#1").c_str(), 0), 5u);
    EXPECT_EQ(Wide(buffer), W("first"));
}

// The length found sixteen bytes a step: every start within a step, every
// length around the steps, a 0 just before the text and other units after.
TEST(Lookup, WideLengthFindsTheTerminatorFromEveryStart) {
    alignas(16) KTWCHAR room[64];
    for (size_t offset = 1; offset <= 8; ++offset)
        for (size_t length = 0; length <= 40; ++length) {
            std::char_traits<KTWCHAR>::assign(room, 64, 0x1234);
            room[offset - 1] = 0;
            room[offset + length] = 0;
            EXPECT_EQ(WideLength(room + offset), length) << offset;
        }
}

TEST(Lookup, BufferTranslationFitsWholeCharacters) {
    Define("lookup-fit", "translated");
    const WideString text = W("lookup-fit");
    KTWCHAR room[16];
    std::char_traits<KTWCHAR>::copy(room, text.c_str(), text.size() + 1);
    EXPECT_EQ(Supp_TranslateBufferW(room, 6), 5);
    EXPECT_EQ(Wide(room), W("trans"));
    char narrow[32] = "lookup-fit";
    EXPECT_EQ(Supp_TranslateBufferA(narrow, sizeof narrow), 10);
    EXPECT_STREQ(narrow, "translated");
    char unknown[32] = "lookup-fit-unknown";
    EXPECT_EQ(Supp_TranslateBufferA(unknown, sizeof unknown), 18);
    EXPECT_STREQ(unknown, "lookup-fit-unknown");
    EXPECT_EQ(Supp_TranslateBufferW(nullptr, 4), 0);
}

TEST(ResourceKey, HashIgnoresTheCaseOfAsciiLettersAndTakesBytesAsSigned) {
    EXPECT_EQ(Supp_HashKey("APP.DLL#1#100"), Supp_HashKey("app.dll#1#100"));
    EXPECT_EQ(Supp_HashKey(""), 0u);
    EXPECT_EQ(Supp_HashKey("Ab"), 97u * 257 + 98);
    EXPECT_EQ(Supp_HashKey("\xC4"), 0xFFFFFFC4u);  // not folded, not unsigned
    Define("APP.DLL#1#100lookup-case", "upper");
    Define("app.dll#1#100lookup-case", "lower");
    EXPECT_EQ(Wide(Supp_Translate(W("app.dll#1#100lookup-case").c_str())), W("lower"));
}

TEST(ResourceKey, NamesTheModuleFileTheKindAndTheIdOrName) {
    const HMODULE module = nullptr;  // the program
    char narrow[300] = "untouched";
    Supp_MakeKeyA(module, reinterpret_cast<const void*>(std::uintptr_t{42}), narrow,
                  kSuppKindString);
    const std::string key = narrow;
    ASSERT_NE(key, "untouched");
    EXPECT_EQ(key.find_first_of(":\\/"), std::string::npos);
    EXPECT_EQ(key.substr(key.size() - 5), "#3#42");

    KTWCHAR wide[300] = {};
    Supp_MakeKeyW(module, KTW("MAIN"), wide, kSuppKindDialog);
    EXPECT_EQ(Wide(wide), W((key.substr(0, key.size() - 5) + "#1#MAIN").c_str()));
    Supp_MakeKeyA(module, "About", narrow, kSuppKindMenu);
    EXPECT_EQ(std::string(narrow), key.substr(0, key.size() - 5) + "#2#About");
}

}  // namespace
}  // namespace kt::test
