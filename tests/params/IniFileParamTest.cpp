// The tree in a private profile file: how it lies in the file, what it reads
// back, what it cannot hold, and trees that cross to memory and back.
#include <functional>
#include <iterator>
#include <string>

#include "kticore/core/Exception.h"
#include "kticore/params/IniFileParam.h"
#include "kticore/params/ParamTools.h"
#include "platform/FileSystem.h"
#include "tests/params/AllKinds.h"
#include "tests/support/ScratchDirectory.h"

namespace kt::test {
namespace {

class IniFileParam : public ::testing::Test {
protected:
    Ref<IParam> Open() { return Ref<IParam>(new_IParamIniFile(file.c_str())); }
    std::string Content() { return ContentOf(file); }

    ScratchDirectory directory;
    WideString file = directory / KTW("tree.ini");
};

TEST_F(IniFileParam, OpeningMakesTheDirectoryTheFileAndTheRootsMarker) {
    const WideString nested = directory / KTW("new/deeper/tree.ini");
    Ref<IParam> root(new_IParamIniFile(nested.c_str()));
    EXPECT_EQ(ContentOf(nested), "[\\]\r\n@=e\r\n");
    EXPECT_EQ(ValueNames(root.get()), Names{"@"});
    EXPECT_EQ(ValueAt(root.get(), "@").vt, KTVT_EMPTY);
    EXPECT_EQ(root->QueryInterface(typeid(IRegisterIface), nullptr), 1);
    EXPECT_EQ(root->QueryInterface(typeid(IParam), nullptr), 0);
}

TEST_F(IniFileParam, SectionsLieInTheFileByTheirFullPath) {
    auto root = Open();
    Set(root.get(), "Width", CKTVariant(640));
    Set(root.get(), "Sub\\On", CKTVariant(1, KTVT_BOOL));
    Set(root.get(), "x\\y\\Name", CKTVariant("sam"));
    // The section of a value is made at its whole path: no "[\x]" here.
    EXPECT_EQ(Content(),
              "[\\]\r\n@=e\r\nWidth=i640\r\n[\\Sub]\r\n@=e\r\nOn=f1\r\n"
              "[\\x\\y]\r\n@=e\r\nName=ssam\r\n");
    EXPECT_EQ(SectionNames(root.get()), (Names{"Sub", "x"}));
    EXPECT_EQ(root->GetSection("x", 0), nullptr);
    Ref<IParam> y(root->GetSection("X\\Y", 0));
    ASSERT_NE(y, nullptr);
    EXPECT_TRUE(ValueAt(y.get(), "name") == CKTVariant("sam"));
}

TEST_F(IniFileParam, DeletingValuesKeepsTheMarkerAndClearingRemovesTheSection) {
    auto root = Open();
    Set(root.get(), "a\\v", CKTVariant(1));
    Set(root.get(), "a\\b\\w", CKTVariant(2));
    Ref<IParam> a(root->GetSection("a", 0));
    a->DeleteAllValues();
    EXPECT_EQ(ValueNames(a.get()), Names{"@"});
    EXPECT_EQ(ValueAt(root.get(), "a\\b\\w").vt, KTVT_INT);

    a->Clear();
    EXPECT_EQ(Content(), "[\\]\r\n@=e\r\n");
    Set(a.get(), "again", CKTVariant(3));  // the object stays usable
    EXPECT_EQ(SectionNames(root.get()), Names{"a"});
    root->DeleteSection("a");
    EXPECT_TRUE(SectionNames(root.get()).empty());
}

// "x" is listed for "[\x\y]" alone, and deleting or clearing it takes that
// away too.
TEST_F(IniFileParam, DeletingASectionTakesDeeperSectionsWithoutKeysBetween) {
    auto root = Open();
    Set(root.get(), "x\\y\\v", CKTVariant(1));
    Set(root.get(), "p\\q\\w", CKTVariant(2));
    root->DeleteSection("x");
    EXPECT_EQ(SectionNames(root.get()), Names{"p"});
    root->Clear();
    EXPECT_EQ(Content(), "");
}

TEST_F(IniFileParam, ListsDirectChildrenOfDeeperSectionsOnce) {
    WriteContent(file,
                 "[\\]\r\n@=e\r\n[\\a\\b]\r\nk=i1\r\n[\\a\\c\\d]\r\n@=e\r\n[\\A\\B]\r\nk=i2\r\n"
                 "[\\q]\r\n@=e\r\n[foreign]\r\nk=1\r\n[\\abc]\r\n@=e\r\n");
    auto root = Open();
    // Names are told apart exactly here, though the file finds them either way.
    EXPECT_EQ(SectionNames(root.get()), (Names{"a", "A", "q", "abc"}));
    Ref<IParam> a(root->GetSection("a", 1));  // no "[\a]" yet: made with its marker
    EXPECT_EQ(SectionNames(a.get()), (Names{"b", "c", "B"}));
    EXPECT_EQ(static_cast<int>(ValueAt(root.get(), "a\\B\\k")), 1);  // the first section of the name
}

TEST_F(IniFileParam, ReadsOnlyMarkedTextAndClearsTheVariantOfAMissingValue) {
    WriteContent(file, "[\\]\r\n@=e\r\nPort=8080\r\nName=sam\r\n");
    auto root = Open();
    EXPECT_EQ(ValueAt(root.get(), "Port").vt, kMissing);
    EXPECT_TRUE(ValueAt(root.get(), "Name") == CKTVariant("am"));

    CKTVariant kept(5);
    EXPECT_EQ(root->GetValue("nosection\\v", &kept), 0);
    EXPECT_EQ(static_cast<int>(kept), 5);
    EXPECT_EQ(root->GetValue("novalue", &kept), 0);
    EXPECT_EQ(kept.vt, KTVT_EMPTY);
}

TEST_F(IniFileParam, TwoTreesOnOneFileSeeEachOtherAtOnce) {
    auto first = Open();
    auto second = Open();
    Set(first.get(), "s\\v", CKTVariant(1));
    EXPECT_EQ(static_cast<int>(ValueAt(second.get(), "s\\v")), 1);
    second->DeleteSection("s");
    EXPECT_EQ(ValueAt(first.get(), "s\\v").vt, kMissing);
}

// The row of the profile file in the table of back ends: kinds 0 to 17 are
// kept, objects and wide text are dropped without a word.
TEST_F(IniFileParam, CarriesEveryKindUpToBlobsBetweenMemoryAndTheFile) {
    CCounted object;
    auto memory = NewTree();
    const tagRECT rect{1, 2, 30, 40};
    const tagRRECT realRect{1, 2, 3, 4.25};
    const CKTVariant values[] = {
        CKTVariant(), CKTVariant(1, KTVT_BOOL), CKTVariant(static_cast<unsigned char>(0xA5)),
        CKTVariant(static_cast<unsigned short>(65535)), CKTVariant(4294967295ul), CKTVariant(-5),
        CKTVariant(7u), CKTVariant(-7l, KTVT_LONG), CKTVariant(1.5), CKTVariant(0.25f),
        CKTVariant("  \"quoted\" text"), CKTVariant(tagSIZE{1, -2}), CKTVariant(tagRSIZE{1.5, 2}),
        CKTVariant(tagPOINT{3, 4}), CKTVariant(tagRPOINT{0.5, -0.5}), CKTVariant(rect),
        CKTVariant(realRect), Blob(1000)};
    for (const CKTVariant& value : values)
        Set(memory.get(), ("k\\kind" + std::to_string(value.vt)).c_str(), value);
    Set(memory.get(), "k\\object", CKTVariant(static_cast<IKTUnknown*>(&object)));
    Set(memory.get(), "k\\wide", CKTVariant(KTW("wide")));

    auto profile = Open();
    Param_CopyTo(memory.get(), profile.get());
    auto back = NewTree();
    Param_CopyTo(profile.get(), back.get());
    Ref<IParam> k(back->GetSection("k", 0));
    for (IParam* section : {back.get(), k.get()}) {  // each section's marker came along
        EXPECT_EQ(ValueAt(section, "@").vt, KTVT_EMPTY);
        section->DeleteValue("@");
    }

    EXPECT_EQ(Param_Cmp(back.get(), memory.get()), 1);
    EXPECT_EQ(Param_Cmp(memory.get(), back.get()), 0);
    EXPECT_EQ(ValueAt(k.get(), "object").vt, kMissing);
    EXPECT_EQ(ValueAt(k.get(), "wide").vt, kMissing);
    Ref<IParam> kept(memory->GetSection("k", 0));
    kept->DeleteValue("object");
    kept->DeleteValue("wide");
    EXPECT_EQ(Param_Cmp(memory.get(), back.get()), 1);

    // A text loses its trailing blanks: the platform trims every value.
    Set(profile.get(), "trailing", CKTVariant("text  "));
    EXPECT_TRUE(ValueAt(profile.get(), "trailing") == CKTVariant("text"));
}

// What the file has no form for is dropped without a word, as objects and
// wide text are, and the file stays as it was; a value path beyond its
// buffer is refused.
TEST_F(IniFileParam, DropsWhatTheFileHasNoFormFor) {
    auto root = Open();
    Set(root.get(), "keep", CKTVariant(1));
    Ref<IParam> deep(root->CreateSection(std::string(300, 'q').c_str()));
    const std::string before = Content();

    const std::string longPath(600, 'p');
    struct Case {
        std::function<void()> action;
        DWORD failure;
    };
    const Case cases[] = {
        {[&] { Set(root.get(), "line", CKTVariant("a\r\nkeep=i2")); }, XE_NONE},
        {[&] { Set(root.get(), "keep=x", CKTVariant(2)); }, XE_NONE},
        {[&] { Set(root.get(), "[x]", CKTVariant(2)); }, XE_NONE},
        {[&] { Set(root.get(), ";x", CKTVariant(2)); }, XE_NONE},
        {[&] { Set(root.get(), " \t ", CKTVariant(2)); }, XE_NONE},  // the platform trims it to no name
        {[&] { Set(root.get(), "\x0b\x0c\x1a", CKTVariant(2)); }, XE_NONE},
        {[&] { Set(root.get(), "x\\ \\v", CKTVariant(2)); }, XE_NONE},  // "\x\ " would be "\x\"
        {[&] { Set(root.get(), "a\r\n[b]\\v", CKTVariant(2)); }, XE_NONE},
        {[&] { Set(deep.get(), (std::string(300, 'p') + "\\v").c_str(), CKTVariant(2)); }, XE_NONE},
        {[&] { Set(Ref<IParam>(root->CreateSection(longPath.c_str())).get(), "v", CKTVariant(2)); }, XE_NONE},
        {[&] { Set(Ref<IParam>(root->GetSection("a\r\n[b]", 1)).get(), "v", CKTVariant(2)); }, XE_NONE},
        {[&] { Set(Ref<IParam>(root->CreateSection("x\t")).get(), "v", CKTVariant(2)); }, XE_NONE},
        {[&] { Set(root.get(), (longPath + "\\v").c_str(), CKTVariant(2)); }, XE_BAD_ARGUMENT},
    };
    for (size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(FailureOf(cases[i].action), cases[i].failure) << "case " << i;
    EXPECT_EQ(Content(), before);
    EXPECT_EQ(root->GetSection(longPath.c_str(), 0), nullptr);
    EXPECT_EQ(ValueAt(root.get(), (longPath + "\\v").c_str()).vt, kMissing);
}

// An empty piece of a path is a name the file holds. A section whose name
// would be another one's for the file, ending in blanks or the root's child
// of no name, drops its own values without a word; the sections below it
// have names of their own and are kept.
TEST_F(IniFileParam, KeepsEmptyPiecesAndDropsValuesOfSectionsTheFileWouldTakeForOthers) {
    auto root = Open();
    Set(root.get(), "top", CKTVariant(1));
    Ref<IParam> a(root->CreateSection("a"));
    Ref<IParam>(a->CreateSection(""));
    CXString text("[\\a\\]|v=i2|[\\ \\x]|y=i3|[\\b\\ ]|z=i4|[\\\\q]|u=i5|[\\ ]|top=i6");
    EXPECT_EQ(Param_String2Param(text, root.get()), 1);
    EXPECT_EQ(Content(), "[\\]\r\n@=e\r\ntop=i1\r\n[\\a]\r\n@=e\r\n[\\a\\]\r\n@=e\r\nv=i2\r\n[\\ \\x]\r\n@=e\r\n"
                         "y=i3\r\n[\\b]\r\n@=e\r\n[\\\\q]\r\n@=e\r\nu=i5\r\n");
    EXPECT_EQ(static_cast<int>(ValueAt(root.get(), "a\\\\v")), 2);
    EXPECT_EQ(static_cast<int>(ValueAt(root.get(), " \\x\\y")), 3);
    EXPECT_EQ(static_cast<int>(ValueAt(root.get(), "\\q\\u")), 5);
    EXPECT_EQ(root->GetSection("", 0), nullptr);
    EXPECT_EQ(root->GetSection(" ", 0), nullptr);

    a->Clear();
    EXPECT_EQ(ValueAt(root.get(), "a\\\\v").vt, kMissing);
    root->DeleteSection("");
    root->DeleteSection(" ");
    EXPECT_EQ(Content(), "[\\]\r\n@=e\r\ntop=i1\r\n[\\b]\r\n@=e\r\n");

    // The same from memory: a copy drops what the file would take for the root.
    auto memory = NewTree();
    Ref<IParam> none(memory->CreateSection(""));
    Set(none.get(), "w", CKTVariant(7));
    Set(none.get(), "sub\\x", CKTVariant(8));
    Param_CopyTo(memory.get(), root.get());
    EXPECT_EQ(Content(), "[\\]\r\n@=e\r\ntop=i1\r\n[\\b]\r\n@=e\r\n[\\\\sub]\r\n@=e\r\nx=i8\r\n");
}

// Sections another program wrote under names this tree cannot open, a piece
// of blanks or one too long for a path, go with what they lie in.
TEST_F(IniFileParam, RemovingSectionsTakesForeignOnesOfOddNames) {
    const std::string longChild(511, 'n');
    const std::string foreign = "[\\]\r\n@=e\r\n[\\ \\x]\r\nk=i1\r\n[\\" + longChild + "]\r\nk=i2\r\n[\\" +
                                longChild + "\\y]\r\nk=i3\r\n[\\keep]\r\n@=e\r\n";
    struct Case {
        std::function<void(IParam*)> action;
        std::string after;
    };
    const Case cases[] = {
        {[](IParam* root) { root->Clear(); }, ""},
        {[](IParam* root) { root->DeleteAllSections(); }, "[\\]\r\n@=e\r\n"},
        {[&](IParam* root) {
             root->DeleteSection(" ");
             root->DeleteSection(longChild.c_str());
         },
         "[\\]\r\n@=e\r\n[\\keep]\r\n@=e\r\n"},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        WriteContent(file, foreign);
        auto root = Open();
        EXPECT_EQ(FailureOf([&] { cases[i].action(root.get()); }), XE_NONE) << "case " << i;
        EXPECT_EQ(Content(), cases[i].after) << "case " << i;
    }
}

// A value is kept while its marked text fits the 64000 bytes the file is
// read with; a longer text is dropped, a longer blob is written without
// digits, as the text form writes it. Neither leaves an older value behind.
TEST_F(IniFileParam, KeepsValuesUpToTheBufferAndLeavesNoOlderValueBehind) {
    auto root = Open();
    struct Case {
        CKTVariant value;
        bool kept;
    };
    const Case cases[] = {
        {Blob(20000), true},  {Blob(31999), true},  {CKTVariant(std::string(40000, 't').c_str()), true},
        {CKTVariant(std::string(63998, 't').c_str()), true},  {Blob(32000), false},
        {Blob(40000), false}, {CKTVariant(std::string(63999, 't').c_str()), false},
        {CKTVariant("a\r\nb=i1"), false},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        Set(root.get(), "v", Blob(4));
        Set(root.get(), "v", cases[i].value);
        const CKTVariant read = ValueAt(root.get(), "v");
        if (cases[i].kept)
            EXPECT_TRUE(read == cases[i].value) << "case " << i;
        else if (cases[i].value.vt == KTVT_BLOB)
            EXPECT_TRUE(read == Blob(0)) << "case " << i;
        else
            EXPECT_EQ(read.vt, kMissing) << "case " << i;
    }
    EXPECT_EQ(ValueAt(root.get(), "b").vt, kMissing);
}

TEST_F(IniFileParam, AReadOnlyFileKeepsItsValues) {
    auto root = Open();
    Set(root.get(), "v", CKTVariant(1));
    ASSERT_TRUE(kt::sys::SetReadOnly(file.c_str(), true));
    Set(root.get(), "v", CKTVariant(2));
    Ref<IParam> added(root->CreateSection("added"));
    EXPECT_EQ(static_cast<int>(ValueAt(root.get(), "v")), 1);
    EXPECT_TRUE(SectionNames(root.get()).empty());
    EXPECT_TRUE(kt::sys::SetReadOnly(file.c_str(), false));
}

TEST_F(IniFileParam, ListingsOverTheBufferGiveWholeNamesOnly) {
    std::string text = "[\\]\r\n@=e\r\n";
    for (int i = 0; i < 3000; ++i)
        text += "[\\child" + std::to_string(10000 + i) + "_padded_to_a_good_length]\r\nk=i1\r\n";
    WriteContent(file, text);
    auto root = Open();
    const Names children = SectionNames(root.get());
    ASSERT_GT(children.size(), 1000u);
    EXPECT_LT(children.size(), 3000u);
    for (const std::string& name : children)
        EXPECT_EQ(name.size(), std::string("child10000_padded_to_a_good_length").size()) << name;
}

// A name of no name would end the zero-terminated listings early.
TEST_F(IniFileParam, NamesOfNoNameInTheFileHideNoOthers) {
    WriteContent(file, "[\\]\r\n@=e\r\na=i1\r\n=i5\r\nb=i2\r\n[\\\\x]\r\nk=i1\r\n"
                       "[\\y]\r\nk=i1\r\n");
    auto root = Open();
    EXPECT_EQ(ValueNames(root.get()), (Names{"@", "a", "b"}));
    EXPECT_EQ(SectionNames(root.get()), Names{"y"});
    root->DeleteAllValues();
    EXPECT_EQ(ValueNames(root.get()), Names{"@"});
    EXPECT_EQ(Content().find("=i5"), std::string::npos);
}

// The platform answers a list that just fits as it answers one it had to cut.
TEST_F(IniFileParam, AListingThatJustFitsKeepsItsLastName) {
    struct Case {
        const char* last;
        bool listed;
    };
    // "@" and 6399 names of 9 characters take 63992 bytes: with "last1"
    // the list fills 63998 bytes, the most the listing holds.
    for (const Case& c : {Case{"last1", true}, Case{"last12", false}}) {
        std::string text = "[\\]\r\n@=e\r\n";
        for (int i = 0; i < 6399; ++i)
            text += "k" + std::to_string(10000000 + i) + "=i1\r\n";
        WriteContent(file, text + c.last + "=i1\r\n");
        const Names names = ValueNames(Open().get());
        EXPECT_EQ(names.back() == c.last, c.listed) << c.last;
        EXPECT_EQ(names.size(), c.listed ? 6401u : 6400u) << c.last;
    }
}

}  // namespace
}  // namespace kt::test
