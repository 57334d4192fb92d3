// The resource directory reader and the texts it finds, on the test module
// and on copies of it broken in the ways a file can be broken.
#include <cstring>

#include "tests/kttool/ToolTestSupport.h"
#include "tools/kttool/ModuleTexts.h"
#include "translation/Lookup.h"

namespace kttool::test {
namespace {

WideText Wide(const char* text) { return WideText(text, text + std::strlen(text)); }

struct ExpectedText {
    unsigned kind;
    const char* resource;
    const char* position;
    const char* text;
};

// One of each form: both string blocks, classic and extended menus at both
// levels, a classic dialog and a named extended one.
constexpr ExpectedText kSomeTexts[] = {
    {kSuppKindString, "1", "string 3", "Line one\nline two"},
    {kSuppKindString, "2", "string 17", "Replace %1 with %2?"},
    {kSuppKindMenu, "200", "item 1", "&Edit"},
    {kSuppKindMenu, "200", "item 0.3", "E&xit"},
    {kSuppKindMenu, "300", "item 0.1", "&Status bar"},
    {kSuppKindDialog, "100", "caption", "Settings"},
    {kSuppKindDialog, "100", "control 4", "Cancel"},
    {kSuppKindDialog, "ABOUT", "control 1", "&Close"},
};
// 5 strings, 10 menu items, 8 dialog texts: separators and the edit
// control have no text to translate.
constexpr size_t kTextCount = 23;

TEST(ModuleTexts, EveryTextOfTheTestModuleIsFoundWhereItStands) {
    const Module module = ReadModule(kTextsModule);
    EXPECT_EQ(module.texts.size(), kTextCount);
    for (const ExpectedText& expected : kSomeTexts) {
        SCOPED_TRACE(expected.text);
        size_t found = 0;
        for (const ModuleText& text : module.texts)
            if (text.kind == expected.kind && Describe(text.resource) == expected.resource &&
                text.position == expected.position && text.text == Wide(expected.text))
                ++found;
        EXPECT_EQ(found, 1u);
    }
}

#if defined(KTTOOL_COMMITTED_TEXTS_MODULE)
// The native tests read the committed copy: it must hold what the script does.
TEST(ModuleTexts, TheCommittedModuleHoldsTheTextsOfItsScript) {
    const Module built = ReadModule(kTextsModule);
    const Module committed = ReadModule(KTTOOL_COMMITTED_TEXTS_MODULE);
    ASSERT_EQ(committed.texts.size(), built.texts.size());
    for (size_t i = 0; i < built.texts.size(); ++i) {
        EXPECT_EQ(committed.texts[i].text, built.texts[i].text);
        EXPECT_EQ(committed.texts[i].position, built.texts[i].position);
    }
}
#endif

// Little-endian fields of a copy of the test module.
std::uint32_t Dword(const Bytes& bytes, size_t at) {
    std::uint32_t value;
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}
void SetDword(Bytes& bytes, size_t at, std::uint32_t value) {
    std::memcpy(bytes.data() + at, &value, sizeof value);
}

// The file offset of the resource directory: the raw data of ".rsrc".
size_t ResourceDirectoryOffset(const Bytes& bytes) {
    const size_t pe = Dword(bytes, 0x3C);
    const size_t sections = pe + 24 + (bytes[pe + 20] | bytes[pe + 21] << 8);
    for (size_t header = sections;; header += 40)
        if (std::memcmp(bytes.data() + header, ".rsrc", 5) == 0)
            return Dword(bytes, header + 20);
}

// The first data entry: down the first entry of each level.
size_t FirstDataEntry(const Bytes& bytes) {
    const size_t root = ResourceDirectoryOffset(bytes);
    size_t directory = root;
    for (int level = 0; level < 3; ++level)
        directory = root + (Dword(bytes, directory + 16 + 4) & 0x7FFFFFFF);
    return directory;
}

struct Breakage {
    const char* name;
    void (*breakIt)(Bytes&);
    const char* message;
};

const Breakage kBreakages[] = {
    {"not an executable",
     [](Bytes& bytes) {
         bytes.assign({'T', 'e', 'x', 't', '\n'});
     },
     "no MZ header"},
    {"no PE header", [](Bytes& bytes) { SetDword(bytes, 0x3C, 0x7FFFFFF0); }, "no PE signature"},
    {"cut inside the resource directory",
     [](Bytes& bytes) { bytes.resize(ResourceDirectoryOffset(bytes) + 20); },
     "runs past the end of the file"},
    {"data past the end of the file",
     [](Bytes& bytes) { SetDword(bytes, FirstDataEntry(bytes) + 4, 0x7FFFFFFF); },
     "lies in no section's data"},
    {"a directory entry that points back to the root",
     [](Bytes& bytes) { SetDword(bytes, ResourceDirectoryOffset(bytes) + 20, 0x80000000u); },
     "reached twice"},
    // The type directory's first entry points into its own entries: the
    // directory there counts tens of thousands of entries in those bytes.
    {"directory tables that overlap",
     [](Bytes& bytes) {
         const size_t root = ResourceDirectoryOffset(bytes);
         const size_t types = Dword(bytes, root + 16 + 4) & 0x7FFFFFFF;
         SetDword(bytes, root + types + 16 + 4,
                  0x80000000u | static_cast<std::uint32_t>(types + 8));
     },
     "tables overlap"},
    {"a menu cut short", [](Bytes& bytes) { SetDword(bytes, FirstDataEntry(bytes) + 4, 6); },
     "menu 200: cut short"},
};

TEST(ModuleTexts, ABrokenFileIsAnsweredWithAMessageNeverARead) {
    const Bytes module = ReadWholeFile(kTextsModule);
    for (const Breakage& breakage : kBreakages) {
        SCOPED_TRACE(breakage.name);
        Bytes broken = module;
        breakage.breakIt(broken);
        try {
            size_t nextScope = 1;
            TextsOfResources(ReadPeResources(broken), nextScope);
            ADD_FAILURE() << "no failure";
        } catch (const FormatError& error) {
            EXPECT_NE(std::string(error.what()).find(breakage.message), std::string::npos)
                << error.what();
        }
    }
}

}  // namespace
}  // namespace kttool::test
