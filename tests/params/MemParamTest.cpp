// The memory tree: paths, the default value, names folded to one case, the
// order of creation, deletion, and how long sections and enumerators live.
#include <string>

#include "kticore/core/Exception.h"
#include "tests/params/ParamTestSupport.h"

namespace kt::test {
namespace {

TEST(MemParamValues, EmptyNameAndAtAreTheDefaultValue) {
    auto tree = NewTree();
    Set(tree.get(), "", CKTVariant(1));
    Set(tree.get(), "@", CKTVariant(2));
    EXPECT_EQ(static_cast<int>(ValueAt(tree.get(), "")), 2);
    EXPECT_EQ(static_cast<int>(ValueAt(tree.get(), nullptr)), 2);
    EXPECT_EQ(ValueNames(tree.get()), Names{"@"});
    tree->DeleteValue("");
    EXPECT_EQ(ValueAt(tree.get(), "@").vt, kMissing);
}

TEST(MemParamValues, CaseIsFoldedAndTheFirstSpellingIsListed) {
    auto tree = NewTree();
    Set(tree.get(), "Name", CKTVariant(1));
    Set(tree.get(), "NAME", CKTVariant(2));
    EXPECT_EQ(static_cast<int>(ValueAt(tree.get(), "name")), 2);
    EXPECT_EQ(ValueNames(tree.get()), Names{"Name"});
    tree->DeleteValue("nAmE");
    EXPECT_TRUE(ValueNames(tree.get()).empty());
}

TEST(MemParamValues, APathMakesItsSectionsAndTheValueGoesOnlyThere) {
    auto tree = NewTree();
    Set(tree.get(), "a\\b\\c", CKTVariant(7));
    EXPECT_EQ(static_cast<int>(ValueAt(tree.get(), "a\\b\\c")), 7);
    EXPECT_TRUE(ValueNames(tree.get()).empty());
    Ref<IParam> b(tree->GetSection("a\\b", 0));
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(ValueNames(b.get()), Names{"c"});
}

TEST(MemParamValues, AMissingValueLeavesTheCallersVariantAlone) {
    auto tree = NewTree();
    CKTVariant value(42);
    EXPECT_EQ(tree->GetValue("missing", &value), 0);
    EXPECT_EQ(tree->GetValue("no\\such", &value), 0);
    EXPECT_EQ(static_cast<int>(value), 42);
    Set(tree.get(), "kept", CKTVariant(1));
    tree->DeleteValue("missing");
    EXPECT_EQ(ValueNames(tree.get()), Names{"kept"});
}

TEST(MemParamValues, ValuesAreDeepCopiesInCreationOrder) {
    auto tree = NewTree();
    CKTVariant text("first");
    Set(tree.get(), "z", text);
    Set(tree.get(), "a", CKTVariant(1));
    Set(tree.get(), "m", CKTVariant(2));
    text = "changed";
    EXPECT_STREQ(static_cast<char*>(ValueAt(tree.get(), "z")), "first");
    EXPECT_EQ(ValueNames(tree.get()), (Names{"z", "a", "m"}));
}

// A path with a `\` goes through a buffer of 512 bytes: a longer one is
// refused, and the tree stays as it was.
TEST(MemParamValues, APathBeyondItsBufferIsRefusedWithoutAChange) {
    auto tree = NewTree();
    const std::string fits = std::string(509, 'a') + "\\v";  // 511 bytes and a terminator
    const std::string tooLong = std::string(510, 'a') + "\\v";
    Set(tree.get(), fits.c_str(), CKTVariant(1));
    EXPECT_EQ(static_cast<int>(ValueAt(tree.get(), fits.c_str())), 1);
    EXPECT_EQ(FailureOf([&] { Set(tree.get(), tooLong.c_str(), CKTVariant(2)); }),
              static_cast<DWORD>(XE_BAD_ARGUMENT))
        << "a path of 512 bytes was taken";
    EXPECT_EQ(ValueAt(tree.get(), tooLong.c_str()).vt, kMissing);
    EXPECT_EQ(SectionNames(tree.get()), Names{std::string(509, 'a')});
}

TEST(MemParamSections, CreateSectionEmptiesAnExistingSectionAndGivesTheSameObject) {
    auto tree = NewTree();
    Ref<IParam> first(tree->CreateSection("a"));
    Set(first.get(), "v", CKTVariant(1));
    Ref<IParam> child(first->CreateSection("child"));
    Ref<IParam> again(tree->CreateSection("A"));
    EXPECT_EQ(again.get(), first.get());
    EXPECT_TRUE(ValueNames(again.get()).empty());
    EXPECT_TRUE(SectionNames(again.get()).empty());
    EXPECT_EQ(SectionNames(tree.get()), Names{"a"});
}

TEST(MemParamSections, GetSectionCreatesOnlyWhenAsked) {
    auto tree = NewTree();
    EXPECT_EQ(tree->GetSection("a\\b", 0), nullptr);
    EXPECT_TRUE(SectionNames(tree.get()).empty());
    Ref<IParam> b(tree->GetSection("a\\b", 1));
    ASSERT_NE(b, nullptr);
    Ref<IParam> same(tree->GetSection("A\\B", 0));
    EXPECT_EQ(same.get(), b.get());
}

TEST(MemParamSections, DeletingThroughAPathEmptiesButKeepsTheSection) {
    auto tree = NewTree();
    Set(tree.get(), "a\\b\\v", CKTVariant(1));
    Ref<IParam> a(tree->GetSection("a", 0));
    tree->DeleteSection("a\\b");
    EXPECT_EQ(SectionNames(a.get()), Names{"b"});
    EXPECT_EQ(ValueAt(tree.get(), "a\\b\\v").vt, kMissing);
    a->DeleteSection("B");
    EXPECT_TRUE(SectionNames(a.get()).empty());
    EXPECT_EQ(a->GetSection("b", 0), nullptr);
}

// Empty parts and a trailing `\` name sections with an empty name.
TEST(MemParamSections, EmptyPartsAreSectionsWithAnEmptyName) {
    auto tree = NewTree();
    Ref<IParam> below(tree->CreateSection("a\\"));
    Ref<IParam> empty(tree->CreateSection(""));
    Set(tree.get(), "a\\\\v", CKTVariant(3));
    EXPECT_EQ(SectionNames(tree.get()), (Names{"a", ""}));
    Ref<IParam> a(tree->GetSection("a", 0));
    EXPECT_EQ(SectionNames(a.get()), Names{""});
    EXPECT_EQ(static_cast<int>(ValueAt(below.get(), "v")), 3);
}

TEST(MemParamSections, AHeldSectionOutlivesItsParentsClear) {
    auto tree = NewTree();
    Ref<IParam> a(tree->CreateSection("a"));
    Set(a.get(), "v", CKTVariant(5));
    tree->Clear();
    EXPECT_TRUE(SectionNames(tree.get()).empty());
    EXPECT_EQ(static_cast<int>(ValueAt(a.get(), "v")), 5);
    Ref<IParam> b(tree->CreateSection("b"));
    Set(b.get(), "w", CKTVariant(6));
    tree->DeleteAllSections();
    EXPECT_TRUE(ValueNames(b.get()).empty());  // emptied, held elsewhere
    EXPECT_TRUE(SectionNames(tree.get()).empty());
    Ref<IParam> c(tree->CreateSection("c"));  // the lists take names again
    EXPECT_EQ(SectionNames(tree.get()), Names{"c"});
}

TEST(MemParamSections, AnEnumeratorKeepsItsSectionAlive) {
    auto tree = NewTree();
    Ref<IParam> a(tree->CreateSection("a"));
    Set(a.get(), "first", CKTVariant(1));
    CTEnum<const char*>* names = a->EnumValues();
    a.reset();
    tree->Clear();  // the enumerator holds the last reference now
    const char* name = nullptr;
    ASSERT_EQ(names->Next(1, &name, nullptr), 1);
    EXPECT_STREQ(name, "first");
    EXPECT_EQ(names->Next(1, &name, nullptr), 0);
    names->Release();
}

// A walk passes over names removed ahead of it, and never reads one that
// is gone: each case takes "a", then removes what stands next.
TEST(MemParamSections, AWalkPassesOverNamesRemovedAheadOfIt) {
    struct Case {
        void (*remove)(IParam*);
        Names rest;
    };
    const Case cases[] = {
        {[](IParam* tree) { tree->DeleteValue("B"), tree->DeleteSection("B"); }, Names{"c"}},
        {[](IParam* tree) { tree->DeleteAllValues(), tree->DeleteAllSections(); }, Names{}},
        {[](IParam* tree) { tree->Clear(); }, Names{}},
    };
    for (const Case& c : cases) {
        auto tree = NewTree();
        for (const char* name : {"a", "b", "c"}) {
            Set(tree.get(), name, CKTVariant(1));
            Ref<IParam>(tree->CreateSection(name));
        }
        CTEnum<const char*>* values = tree->EnumValues();
        CTEnum<const char*>* sections = tree->EnumSections();
        ASSERT_EQ(values->Skip(1) + sections->Skip(1), 2);
        c.remove(tree.get());
        EXPECT_EQ(NamesOf(values), c.rest);
        EXPECT_EQ(NamesOf(sections), c.rest);
    }
}

// A name an enumerator hands out is the list's own copy, which the deletion
// of its entry frees: it must not be read after that.
TEST(MemParamSections, EntriesGoByTheNamesTheirEnumeratorsHandOut) {
    auto tree = NewTree();
    for (const char* name : {"a", "b", "c"}) {
        Set(tree.get(), name, CKTVariant(1));
        Ref<IParam>(tree->CreateSection(name));
    }
    auto deleteEach = [&](CTEnum<const char*>* names, void (IParam::*remove)(const char*)) {
        const char* name = nullptr;
        while (names->Next(1, &name, nullptr))
            (tree.get()->*remove)(name);
        names->Release();
    };
    deleteEach(tree->EnumValues(), &IParam::DeleteValue);
    deleteEach(tree->EnumSections(), &IParam::DeleteSection);
    EXPECT_TRUE(ValueNames(tree.get()).empty());
    EXPECT_TRUE(SectionNames(tree.get()).empty());
    EXPECT_EQ(tree->GetSection("b", 0), nullptr);
}

TEST(MemParamSections, ADeepTreeGoesWithoutExhaustingTheStack) {
    auto tree = NewTree();
    Ref<IParam> at(tree->CreateSection("s"));
    for (int level = 1; level < 100000; ++level)
        at.reset(at->CreateSection("s"));
    at.reset();
    tree.reset();  // the whole chain goes here
    SUCCEED();
}

TEST(MemParamInterfaces, AnswersForWhatIsRegisteredOnly) {
    auto tree = NewTree();
    void* out = &out;
    EXPECT_EQ(tree->QueryInterface(typeid(IParam), &out), 0);
    EXPECT_EQ(out, nullptr);
    IRegisterIface* reg = nullptr;
    ASSERT_EQ(tree->QueryInterface(typeid(IRegisterIface), reinterpret_cast<void**>(&reg)), 1);
    Ref<IRegisterIface> held(reg);

    CCounted other;
    EXPECT_EQ(reg->RegisterInterface(&other, typeid(IParam), 1), 1);
    EXPECT_EQ(other.References(), 2u);
    EXPECT_EQ(tree->QueryInterface(typeid(IParam), nullptr), 1);
    EXPECT_EQ(other.References(), 2u);  // a pure test adds nothing
    CCounted replacement;               // entered without a reference
    EXPECT_EQ(reg->RegisterInterface(&replacement, typeid(IParam), 0), 1);
    EXPECT_EQ(other.References(), 1u);
    EXPECT_EQ(reg->RegisterInterface(nullptr, typeid(IParam), 0), 1);
    EXPECT_EQ(replacement.References(), 1u);
    EXPECT_EQ(reg->RegisterInterface(nullptr, typeid(IParam), 0), 0);
}

}  // namespace
}  // namespace kt::test
