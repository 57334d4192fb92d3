// The stream form of a tree: its exact bytes, and loads of streams that are
// cut, broken, nested too deep or carry names the form cannot.
#include <string>
#include <vector>

#include "kticore/core/Exception.h"
#include "kticore/params/ParamTools.h"
#include "tests/params/ParamTestSupport.h"
#include "tests/support/Streams.h"

namespace {

using kt::test::AllBytes;
using kt::test::Bytes;
using kt::test::Names;
using kt::test::NewTree;
using kt::test::Ref;
using kt::test::SectionNames;
using kt::test::Set;
using kt::test::ValueAt;
using kt::test::ValueNames;

Bytes Saved(IParam* tree) {
    Ref<IXStream> stream(new_StreamOnMemory());
    EXPECT_EQ(SaveParamToXStream(stream.get(), tree), 1);
    return AllBytes(stream.get());
}

// Loads `bytes` into a tree that has content of its own.
int Load(const Bytes& bytes, Ref<IParam>& tree) {
    tree = NewTree();
    Set(tree.get(), "old\\value", CKTVariant(1));
    Ref<IXStream> stream(new_StreamOnMemory());
    if (!bytes.empty())
        stream->Write(bytes.data(), static_cast<unsigned>(bytes.size()));
    stream->Seek(0, 0);
    return LoadParamFromXStream(stream.get(), tree.get());
}

Bytes Text(const std::string& text) { return Bytes(text.begin(), text.end()); }

TEST(StreamForm, EmptySectionsAreTwoZeroBytesEach) {
    auto tree = NewTree();
    Ref<IParam> a(tree->CreateSection("a"));
    Ref<IParam> b(tree->CreateSection("b"));
    Ref<IParam> unnamed(tree->CreateSection(""));  // left out, with all below it
    Set(unnamed.get(), "lost", CKTVariant(1));
    EXPECT_EQ(Saved(tree.get()), Text(std::string("a\0\0\0b\0\0\0\0\0", 10)));
}

TEST(StreamForm, AValueIsItsNameAndTheStoredVariant) {
    auto tree = NewTree();
    Set(tree.get(), "v", CKTVariant("xy"));
    Ref<IXStream> variant(new_StreamOnMemory());
    const CKTVariant value("xy");
    variant->WriteVariant(&value);
    Bytes expected = Text(std::string("\0v\0", 3));
    const Bytes stored = AllBytes(variant.get());
    expected.insert(expected.end(), stored.begin(), stored.end());
    expected.push_back(0);
    EXPECT_EQ(Saved(tree.get()), expected);
}

TEST(StreamForm, ALoadReplacesAndAnEmptyStreamEmpties) {
    auto source = NewTree();
    Set(source.get(), "s\\v", CKTVariant(2));
    Ref<IParam> tree;
    EXPECT_EQ(Load(Saved(source.get()), tree), 1);
    EXPECT_EQ(SectionNames(tree.get()), Names{"s"});
    EXPECT_EQ(Load(Bytes(), tree), 1);
    EXPECT_TRUE(SectionNames(tree.get()).empty());
}

TEST(StreamForm, ACutStreamGivesWhatWasRead) {
    auto source = NewTree();
    Set(source.get(), "a\\v", CKTVariant(1));
    Set(source.get(), "b\\w", CKTVariant(2));
    Bytes bytes = Saved(source.get());
    bytes.resize(bytes.size() - 12);  // into the value of b
    Ref<IParam> tree;
    EXPECT_EQ(Load(bytes, tree), 1);
    EXPECT_EQ(static_cast<int>(ValueAt(tree.get(), "a\\v")), 1);
    EXPECT_EQ(SectionNames(tree.get()), (Names{"a", "b"}));
}

TEST(StreamForm, AnUnknownKindEmptiesTheTreeAndFails) {
    Bytes bytes = Text(std::string("\0v\0", 3));
    bytes.push_back(99);  // a kind beyond the last
    bytes.push_back(0);
    Ref<IParam> tree;
    EXPECT_EQ(Load(bytes, tree), 0);
    EXPECT_TRUE(ValueNames(tree.get()).empty());
    EXPECT_TRUE(SectionNames(tree.get()).empty());
}

TEST(StreamForm, AStoredObjectLongerThanTheStreamEmptiesTheTreeAndFails) {
    Bytes bytes = Text(std::string("\0v\0\x12\0Unknown\0\xE8\x03\0\0payload", 22));
    Ref<IParam> tree;
    EXPECT_EQ(Load(bytes, tree), 0);
    EXPECT_TRUE(ValueNames(tree.get()).empty());
    EXPECT_TRUE(SectionNames(tree.get()).empty());
}

// The form nests 1000 sections deep and no deeper, either way: a chain of
// that many saves to its exact form and loads back; one more is refused.
TEST(StreamForm, NestingUpToTheLimitComesBackAndBeyondIsRefused) {
    constexpr int kLimit = 1000;
    for (const int levels : {kLimit, kLimit + 1}) {
        std::string form;
        for (int level = 0; level < levels; ++level)
            form += std::string("s\0", 2);
        form += std::string(2 * (levels + 1), '\0');
        auto chain = NewTree();
        Ref<IParam> at(chain->CreateSection("s"));
        for (int level = 1; level < levels; ++level)
            at.reset(at->CreateSection("s"));

        Ref<IParam> tree;
        if (levels <= kLimit) {
            EXPECT_EQ(Saved(chain.get()), Text(form));
            EXPECT_EQ(Load(Text(form), tree), 1);
            EXPECT_EQ(Param_Cmp(chain.get(), tree.get()), 1);
            continue;
        }
        Ref<IXStream> stream(new_StreamOnMemory());
        try {
            SaveParamToXStream(stream.get(), chain.get());
            ADD_FAILURE() << "saved " << levels << " levels";
        } catch (const CXException& failure) {
            EXPECT_EQ(failure.code, static_cast<DWORD>(XE_BAD_ARGUMENT));
        }
        EXPECT_EQ(Load(Text(form), tree), 0);
        EXPECT_TRUE(SectionNames(tree.get()).empty());
        EXPECT_TRUE(ValueNames(tree.get()).empty());
    }
}

TEST(StreamForm, NamesTheFormCannotCarryAreRefusedOnSave) {
    for (const std::string& name : {std::string("line\nfeed"), std::string(1023, 'n')}) {
        auto tree = NewTree();
        Set(tree.get(), name.c_str(), CKTVariant(1));
        Ref<IXStream> stream(new_StreamOnMemory());
        EXPECT_THROW(SaveParamToXStream(stream.get(), tree.get()), CXException) << name.size();
    }
    auto tree = NewTree();
    Set(tree.get(), std::string(1022, 'n').c_str(), CKTVariant(1));
    Ref<IParam> odd;  // an unknown class whose name ended at a line feed
    ASSERT_EQ(Load(Text(std::string("\0v\0\x12\0Odd\n\0\0\0\0\0", 14)), odd), 1);
    Ref<IXStream> stream(new_StreamOnMemory());
    EXPECT_THROW(SaveParamToXStream(stream.get(), odd.get()), CXException);
    Ref<IParam> back;
    EXPECT_EQ(Load(Saved(tree.get()), back), 1);
    EXPECT_EQ(ValueNames(back.get()), Names{std::string(1022, 'n')});
}

}  // namespace
