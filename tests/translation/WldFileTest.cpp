// Dictionary files loaded into the process's dictionary: the first definition
// wins, the language id sets the code page of values, and a file that fails
// leaves the texts as they were. The dictionary is one per process: each test
// has keys of its own, and what needs a dictionary never loaded runs in a
// process of its own.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "kticore/translation/Translation.h"
#include "tests/support/ScratchDirectory.h"
#include "translation/SuppDictionary.h"

namespace kt::test {
namespace {

// The translation of an ASCII text.
WideString Translated(const char* text) { return Wide(Supp_Translate(W(text).c_str())); }

// Language ids switch the process's narrow code page; each test puts back
// the one it found, so that later tests do not depend on the order.
class WldFiles : public ::testing::Test {
protected:
    void TearDown() override { SuppDictionary().SetCodePage(codePageBefore); }

    WideString File(const char* leaf, const std::string& content) {
        const WideString name = directory / W(leaf);
        WriteContent(name, content);
        return name;
    }
    int AddWld(const char* leaf, const std::string& content) {
        return Supp_AddWld(File(leaf, content).c_str());
    }

    ScratchDirectory directory;
    const DWORD codePageBefore = Supp_GetACP();
};

TEST_F(WldFiles, JapaneseAndRussianValuesComeOutAsWideText) {
    struct Language {
        const char* locale;
        unsigned long codePage;
        const char* key;
        const char* value;
        WideString wide;
    };
    const Language languages[] = {
        {"1041", 932, "wld-hello-ja", "\x82\xB1\x82\xF1\x82\xC9\x82\xBF\x82\xCD",
         KTW("\u3053\u3093\u306B\u3061\u306F")},
        {"1049", 1251, "wld-hello-ru", "\xCF\xF0\xE8\xE2\xE5\xF2",
         KTW("\u041F\u0440\u0438\u0432\u0435\u0442")},
    };
    for (const Language& language : languages) {
        const std::string text = std::string("\"KT_WLD_LANG_ID\"\n\"") + language.locale +
                                 "\"\n\"" + language.key + "\"\n\"" + language.value + "\"\n";
        ASSERT_EQ(AddWld("language.wld", text), 1);
        EXPECT_EQ(Supp_GetACP(), language.codePage);
        EXPECT_EQ(Translated(language.key), language.wide);
    }
}

TEST_F(WldFiles, KeysAreReadInTheCodePageBeforeTheFileValuesInTheOneAtFirstUse) {
    ASSERT_EQ(AddWld("en.wld", "\"KT_WLD_LANG_ID\"\n\"1033\"\n"), 1);
    ASSERT_EQ(Supp_GetACP(), 1252u);
    const char cat[] = "\xCA\xEE\xF8\xEA\xE0";  // Russian in code page 1251
    ASSERT_EQ(AddWld("ru.wld", std::string("\"KT_WLD_LANG_ID\"\n\"1049\"\n\"") + cat + "\"\n\"" +
                                   cat + "\"\n"),
              1);
    const WideString keyIn1252 = KTW("\u00CA\u00EE\u00F8\u00EA\u00E0");
    const WideString russian = KTW("\u041A\u043E\u0448\u043A\u0430");
    EXPECT_EQ(Wide(Supp_Translate(keyIn1252.c_str())), russian);
    EXPECT_EQ(Supp_Translate(russian.c_str()), russian.c_str())
        << "no key in the file's own code page";
}

TEST_F(WldFiles, AnUnknownOrZeroLanguageLeavesTheCodePage) {
    ASSERT_EQ(AddWld("ru.wld", "\"KT_WLD_LANG_ID\"\n\"1049\"\n"), 1);
    for (const char* id : {"0", "12345", "x"}) {
        AddWld("other.wld", std::string("\"KT_WLD_LANG_ID\"\n\"") + id + "\"\n");
        EXPECT_EQ(Supp_GetACP(), 1251u) << id;
    }
}

TEST_F(WldFiles, AKeyDefinedAgainKeepsItsFirstValueWithinAndAcrossFiles) {
    // A narrow text asked for before any file defines itself.
    Supp_Translate("wld-asked-first");
    // wld-aeaea and wld-bagab have one hash (h = h * 257 + c in 32 bits):
    // the second is the first again.
    ASSERT_EQ(AddWld("a.wld",
                     "\"wld-twice\"\n\"first\"\n\"wld-twice\"\n\"second\"\n"
                     "\"wld-aeaea\"\n\"one\"\n\"wld-bagab\"\n\"other\"\n"),
              1);
    ASSERT_EQ(AddWld("b.wld",
                     "\"wld-twice\"\n\"third\"\n\"wld-added\"\n\"added\"\n"
                     "\"wld-asked-first\"\n\"later\"\n"),
              1);
    EXPECT_EQ(Translated("wld-twice"), W("first"));
    EXPECT_EQ(Translated("wld-added"), W("added"));
    EXPECT_EQ(Translated("wld-bagab"), W("one"));
    EXPECT_EQ(Translated("wld-asked-first"), W("wld-asked-first"));
}

TEST_F(WldFiles, AFileThatCannotBeReadLoadsNothingAndThrowsNothing) {
    ASSERT_EQ(AddWld("good.wld", "\"wld-kept\"\n\"kept\"\n"), 1);
    EXPECT_EQ(Supp_AddWld((directory / W("missing.wld")).c_str()), 0);
    EXPECT_EQ(Supp_AddWld(directory.Path().c_str()), 0);  // a directory
    EXPECT_EQ(Translated("wld-kept"), W("kept"));
}

// What a process that has loaded no dictionary yet sees. Each runs in a
// process of its own, started afresh; its findings come back on stderr.
class FreshDictionaryDeathTest : public WldFiles {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(FreshDictionaryDeathTest, InitIsRefusedOnceADictionaryIsLoadedAndAddWldAdds) {
    const WideString first = File("first.wld", "\"fresh-a\"\n\"A\"\n");
    const WideString second = File("second.wld", "\"fresh-b\"\n\"B\"\n");
    const WideString missing = directory / W("missing.wld");
    EXPECT_EXIT(
        {
            const int failed = Supp_Init(missing.c_str());
            const int loaded = Supp_Init(first.c_str());
            const unsigned long codePage = Supp_GetACP();
            const int again = Supp_Init(second.c_str());
            const bool secondIgnored = Translated("fresh-b") == W("fresh-b");
            const int added = Supp_AddWld(second.c_str());
            std::fprintf(stderr, "%d %d %lu %d %d %d %s\n", failed, loaded, codePage, again,
                         secondIgnored, added, Translated("fresh-b") == W("B") ? "B" : "-");
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "0 1 0 0 1 1 B");
}

TEST_F(FreshDictionaryDeathTest, AddWldBeforeInitIsInit) {
    const WideString first = File("first.wld", "\"fresh-a\"\n\"A\"\n");
    EXPECT_EXIT(
        {
            const int added = Supp_AddWld(first.c_str());
            std::fprintf(stderr, "%d %d\n", added, Supp_Init(first.c_str()));
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "1 0");
}

TEST_F(FreshDictionaryDeathTest, InitWithoutAPathReadsAppWldInTheCurrentDirectory) {
    File("app.wld", "\"fresh-app\"\n\"from app.wld\"\n");
    const std::filesystem::path where(directory.Path());
    EXPECT_EXIT(
        {
            std::filesystem::current_path(where);
            const int loaded = Supp_Init(nullptr);
            std::fprintf(stderr, "%d %s\n", loaded,
                         Translated("fresh-app") == W("from app.wld") ? "found" : "-");
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "1 found");
}

}  // namespace
}  // namespace kt::test
