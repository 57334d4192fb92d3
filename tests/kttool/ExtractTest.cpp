// A skeleton is read back by the dictionary itself: each text of the module
// is found by its own keyed lookup, with the text as its value.
#include <fstream>
#include <string_view>

#if defined(_WIN32)
#    include "tools/kttool/AnsiText.h"
#endif

#include "kticore/strings/XStringW.h"
#include "platform/TextConversion.h"
#include "tests/kttool/ToolTestSupport.h"
#include "tools/kttool/ModuleTexts.h"
#include "tools/kttool/WldText.h"
#include "translation/Lookup.h"
#include "translation/SuppDictionary.h"
#include "translation/WldFile.h"

namespace kttool::test {
namespace {

// The module under a name beyond ASCII, which keys hold as the system gives it.
const WideText kModuleName = KTW("B\u00fcro.dll");

#if defined(_WIN32)
constexpr unsigned kPathCodePage = kt::sys::kAnsiCodePage;

// The prefix the running library makes for the text's resource.
WideText LibraryPrefix(HMODULE module, const ModuleText& text) {
    KTWCHAR prefix[kKeyedCapacityW] = {};
    Supp_MakeKeyW(module,
                  text.resource.isNumber ? MAKEINTRESOURCEW(text.resource.number)
                                         : text.resource.text.c_str(),
                  prefix, text.kind);
    return prefix;
}
#else
constexpr unsigned kPathCodePage = kt::sys::kUtf8CodePage;

// No module of this format loads natively: the prefix as the README defines it.
using HMODULE = std::nullptr_t;
WideText LibraryPrefix(HMODULE, const ModuleText& text) {
    const std::string id =
        text.resource.isNumber ? std::to_string(text.resource.number) : std::string();
    return kModuleName + KTW("#") + KTWCHAR('0' + text.kind) + KTW("#") +
           WideText(id.begin(), id.end()) +
           (text.resource.isNumber ? WideText() : text.resource.text);
}
#endif

TEST(Extract, EveryTextIsFoundUnderTheKeyTheLibraryMakes) {
    Scratch scratch;
    const std::string skeleton = scratch / "skeleton.wld";
    const std::string copy = scratch / Narrow(kModuleName, kPathCodePage);
    const Bytes bytes = ReadWholeFile(kTextsModule);
    std::ofstream(copy, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    ASSERT_EQ(RunKtTool({"extract", copy, "-o", skeleton}).status, kSuccess);
    kt::LoadWldFile(kt::SuppDictionary(), CXStringW(skeleton.c_str()));
#if defined(_WIN32)
    const HMODULE module = LoadLibraryW(Wide(copy).c_str());
    ASSERT_NE(module, nullptr);
#else
    const HMODULE module = nullptr;
#endif
    const std::vector<ModuleText> texts = ReadModule(kTextsModule).texts;
    ASSERT_FALSE(texts.empty());
    for (const ModuleText& text : texts) {
        SCOPED_TRACE(Printable(text.text));
        const WideText keyed = LibraryPrefix(module, text) + text.text;
        const KTWCHAR* found = Supp_LookupW(keyed.c_str(), 1);
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(WideText(found), text.text);
    }
}

using namespace std::literals;

// Keys as the README defines them: "<module file>#<kind>#<id or name>" and the
// text; kind 1 a dialog, 2 a menu, 3 a string table with its block's number.
TEST(Extract, KeysNameTheResourceAsTheRunningApplicationDoes) {
    Scratch scratch;
    const std::string skeleton = scratch / "skeleton.wld";
    ASSERT_EQ(RunKtTool({"extract", kTextsModule, "-o", skeleton}).status, kSuccess);
    kt::LoadWldFile(kt::SuppDictionary(), CXStringW(skeleton.c_str()));
    for (const char* key : {"texts.dll#3#2Replace %1 with %2?", "texts.dll#2#300&Status bar",
                            "texts.dll#1#ABOUT&Close", "texts.dll#1#100Cancel"})
        EXPECT_NE(Supp_LookupA(key, 1), nullptr) << key;
}

struct Encoding {
    std::u16string_view text;
    unsigned codePage;
    bool readsBack;
};

// What the reader's escapes and a code page let through.
constexpr Encoding kEncodings[] = {
    {u"Line\none\tTab\rCR"sv, 1252, true},
    {u"C:\\Data"sv, 1252, true},      // a lone backslash stays
    {u"C:\\\\Share"sv, 1252, false},  // a run of them counts as one
    {u"C:\\new"sv, 1252, false},      // before n it makes a line feed
    {u"trailing\\"sv, 1252, false},   // at the end it is dropped
    {u"Gr\u00f6\u00dfe"sv, 1252, true},
    {u"Gr\u00f6\u00dfe"sv, 1251, false},
    {u"\u0417\u0430\u043a\u0440\u044b\u0442\u044c"sv, 1251, true},
    {u"nul\0inside"sv, 1252, false},
};

TEST(Extract, ATextIsWrittenOnlyWhereTheReaderGivesItBack) {
    for (const Encoding& encoding : kEncodings) {
        const WideText text(encoding.text.begin(), encoding.text.end());
        SCOPED_TRACE(Printable(text));
        std::string narrow;
        EXPECT_EQ(EncodeWldString(text, encoding.codePage, narrow), encoding.readsBack);
    }
}

}  // namespace
}  // namespace kttool::test
