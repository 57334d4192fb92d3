// Comparing and copying trees through the interface, the round trips through
// the text and the stream form, and the debug dump.
#include <set>
#include <string>

#include "kticore/core/Exception.h"
#include "kticore/params/ParamTools.h"
#include "tests/params/AllKinds.h"

namespace kt::test {
namespace {

TEST(ParamCmp, AsksWhetherTheSecondHoldsAllOfTheFirst) {
    auto empty = NewTree();
    auto other = NewTree();
    auto one = NewTree();
    Set(one.get(), "v", CKTVariant(3));
    EXPECT_EQ(Param_Cmp(empty.get(), other.get()), 1);
    EXPECT_EQ(Param_Cmp(one.get(), one.get()), 1);
    EXPECT_EQ(Param_Cmp(one.get(), empty.get()), 0);
    EXPECT_EQ(Param_Cmp(empty.get(), one.get()), 1);
    EXPECT_EQ(Param_Cmp(nullptr, one.get()), 0);
    EXPECT_EQ(Param_Cmp(nullptr, nullptr), 0);
}

TEST(ParamCmp, KindsMustAgreeAndSectionsMustExist) {
    auto a = NewTree();
    auto b = NewTree();
    Set(a.get(), "v", CKTVariant(3ul));
    Set(b.get(), "v", CKTVariant(3));
    EXPECT_EQ(Param_Cmp(a.get(), b.get()), 0);
    Set(b.get(), "v", CKTVariant(3ul));
    Ref<IParam> section(a->CreateSection("s"));
    EXPECT_EQ(Param_Cmp(a.get(), b.get()), 0);
    Ref<IParam> theirs(b->CreateSection("S"));
    EXPECT_EQ(Param_Cmp(a.get(), b.get()), 1);
}

TEST(ParamCopyTo, MergesSectionsAndOverwritesValues) {
    auto from = NewTree();
    auto to = NewTree();
    Set(from.get(), "s\\new", CKTVariant(1));
    Set(from.get(), "v", CKTVariant(2));
    Set(to.get(), "s\\kept", CKTVariant(3));
    Set(to.get(), "v", CKTVariant("old"));
    Param_CopyTo(from.get(), to.get());
    EXPECT_EQ(static_cast<int>(ValueAt(to.get(), "s\\new")), 1);
    EXPECT_EQ(static_cast<int>(ValueAt(to.get(), "s\\kept")), 3);
    EXPECT_EQ(static_cast<int>(ValueAt(to.get(), "v")), 2);
    EXPECT_EQ(SectionNames(to.get()), Names{"s"});
}

// A back end that hands out no enumerators.
class CNoEnumerators final : public CKTUnknownImpl<IParam> {
public:
    IParam* CreateSection(const char*) override { return nullptr; }
    IParam* GetSection(const char*, int) override { return nullptr; }
    void DeleteSection(const char*) override {}
    void DeleteAllSections() override {}
    CTEnum<const char*>* EnumSections() override { return nullptr; }
    int GetValue(const char*, tagKTVARIANT*) override { return 0; }
    void SetValue(const char*, const tagKTVARIANT*) override {}
    void DeleteValue(const char*) override {}
    void DeleteAllValues() override {}
    CTEnum<const char*>* EnumValues() override { return nullptr; }
    void Clear() override {}
};

TEST(ParamTools, ANullEnumeratorIsAMissingInterfaceForCopyAndDump) {
    Ref<IParam> broken(new CNoEnumerators);
    auto tree = NewTree();
    for (auto action : {+[](IParam* b, IParam* t) { Param_CopyTo(b, t); },
                        +[](IParam* b, IParam*) { Dump_Param(b); }}) {
        try {
            action(broken.get(), tree.get());
            ADD_FAILURE() << "no failure";
        } catch (const CXIFaceException& failure) {
            EXPECT_EQ(failure.code, static_cast<DWORD>(XE_BAD_ARGUMENT));
            EXPECT_TRUE(*failure.iface == typeid(CTEnum<const char*>));
        }
    }
    // Compare and save take a missing list for an empty one.
    EXPECT_EQ(Param_Cmp(broken.get(), tree.get()), 1);
    Ref<IXStream> stream(new_StreamOnMemory());
    EXPECT_EQ(SaveParamToXStream(stream.get(), broken.get()), 1);
    EXPECT_EQ(stream->GetLength(), 2u);
}

// Memory to text to memory with a value of every kind: each comes back as it
// was, but wide text, which turns narrow, and an object, which has no text
// form.
TEST(RoundTrip, ThroughTheTextFormEveryKindComesBackButWideTextAndObjects) {
    CCounted object;
    auto tree = NewTree();
    FillWithEveryKind(tree.get(), true);
    Set(tree.get(), "object", CKTVariant(static_cast<IKTUnknown*>(&object)));
    std::set<int> kinds;
    for (const std::string& name : ValueNames(tree.get()))
        kinds.insert(ValueAt(tree.get(), name.c_str()).vt);
    ASSERT_EQ(kinds.size(), KTVT_WSTR + 1u);

    CXString text;
    Param_Param2String(tree.get(), text);
    auto back = NewTree();
    Set(back.get(), "kept", CKTVariant(1));  // the text adds to what is there
    EXPECT_EQ(Param_String2Param(text, back.get()), 1);
    EXPECT_TRUE(ValueAt(back.get(), "wide") == CKTVariant("wide text"));
    EXPECT_EQ(ValueAt(back.get(), "object").vt, kMissing);
    EXPECT_EQ(static_cast<int>(ValueAt(back.get(), "kept")), 1);
    back->DeleteValue("kept");
    back->DeleteValue("wide");
    tree->DeleteValue("wide");
    tree->DeleteValue("object");
    EXPECT_EQ(Param_Cmp(tree.get(), back.get()), 1);
    EXPECT_EQ(Param_Cmp(back.get(), tree.get()), 1);
    EXPECT_EQ(ValueNames(back.get()), ValueNames(tree.get()));
}

TEST(RoundTrip, ThroughTheStreamFormEveryKindComesBackExactly) {
    auto tree = NewTree();
    FillWithEveryKind(tree.get(), true);
    Set(tree.get(), "double", CKTVariant(1.0 / 3));
    Ref<IXStream> stream(new_StreamOnMemory());
    EXPECT_EQ(SaveParamToXStream(stream.get(), tree.get()), 1);
    stream->Seek(0, 0);
    auto back = NewTree();
    EXPECT_EQ(LoadParamFromXStream(stream.get(), back.get()), 1);
    EXPECT_EQ(Param_Cmp(tree.get(), back.get()), 1);
    EXPECT_EQ(Param_Cmp(back.get(), tree.get()), 1);
    EXPECT_EQ(static_cast<double>(ValueAt(back.get(), "double")), 1.0 / 3);
    EXPECT_EQ(ValueNames(back.get()), ValueNames(tree.get()));
}

}  // namespace
}  // namespace kt::test
