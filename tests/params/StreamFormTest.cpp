// The stream form of a tree: its exact bytes, the order of the calls that
// make it, and loads of streams that are cut, broken or carry names the form
// cannot; trees that fail in the midst of a save or load.
#include <string>
#include <vector>

#include "kticore/core/Exception.h"
#include "kticore/params/ParamTools.h"
#include "tests/params/ParamTestSupport.h"
#include "tests/support/Streams.h"

namespace kt::test {
namespace {

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

Bytes Zeros(size_t count) { return Bytes(count, 0); }

Bytes operator+(Bytes head, const Bytes& tail) {
    head.insert(head.end(), tail.begin(), tail.end());
    return head;
}

Bytes VariantForm(const CKTVariant& value) {
    Ref<IXStream> stream(new_StreamOnMemory());
    stream->WriteVariant(&value);
    return AllBytes(stream.get());
}

// Hands out the names it was given, the empty one too.
class CGivenNames final : public CTArrayEnum<const char*> {
public:
    explicit CGivenNames(const std::vector<const char*>& names) { items = names; }
};

// A back end that lists the names it is given, finds none of its values,
// and has one sub-section, which it gives out by any name. It writes down
// each call as "label.Operation(name)", a value's with "@" and the length of
// `watched` at that moment, and throws a file failure at the one call it is
// told to.
class CScriptedTree final : public CKTUnknownImpl<IParam> {
public:
    struct Script {
        std::string calls;
        std::string failing;  // "label.Operation"
        IXStream* watched = nullptr;
    };

    CScriptedTree(Script& script, const char* label, std::vector<const char*> sections,
                  std::vector<const char*> values, IParam* child = nullptr)
        : script(script),
          label(label),
          sections(std::move(sections)),
          values(std::move(values)),
          child(child) {}

    IParam* CreateSection(const char* name) override { return Child("CreateSection", name); }
    IParam* GetSection(const char* name, int) override { return Child("GetSection", name); }
    void DeleteSection(const char*) override {}
    void DeleteAllSections() override { Note("DeleteAllSections"); }
    CTEnum<const char*>* EnumSections() override {
        Note("EnumSections");
        return new CGivenNames(sections);
    }
    int GetValue(const char* name, tagKTVARIANT*) override {
        const DWORD written = script.watched != nullptr ? script.watched->GetLength() : 0;
        Note("GetValue", "(" + std::string(name) + ")@" + std::to_string(written));
        return 0;
    }
    void SetValue(const char* name, const tagKTVARIANT*) override { Note("SetValue", "(" + std::string(name) + ")"); }
    void DeleteValue(const char*) override {}
    void DeleteAllValues() override { Note("DeleteAllValues"); }
    CTEnum<const char*>* EnumValues() override {
        Note("EnumValues");
        return new CGivenNames(values);
    }
    void Clear() override {}

private:
    void Note(const char* operation, const std::string& detail = "") {
        const std::string call = std::string(label) + "." + operation;
        script.calls += call + detail + " ";
        if (call == script.failing)
            throw CXFileException(XE_IO_FAULT, KTW("scripted"), XFILEOP_READ);
    }
    IParam* Child(const char* operation, const char* name) {
        Note(operation, "(" + std::string(name) + ")");
        if (child != nullptr)
            child->AddRef();
        return child;
    }

    Script& script;
    const char* label;
    std::vector<const char*> sections;
    std::vector<const char*> values;
    IParam* child;
};

TEST(StreamForm, EmptySectionsAreTwoZeroBytesEachAndAValueItsNameAndVariant) {
    auto tree = NewTree();
    Ref<IParam> a(tree->CreateSection("a"));
    Ref<IParam> b(tree->CreateSection("b"));
    Ref<IParam> unnamed(tree->CreateSection(""));  // left out, with all below it
    Set(unnamed.get(), "lost", CKTVariant(1));
    EXPECT_EQ(Saved(tree.get()), Text(std::string("a\0\0\0b\0\0\0\0\0", 10)));
    auto valued = NewTree();
    Set(valued.get(), "v", CKTVariant("xy"));
    EXPECT_EQ(Saved(valued.get()),
              Text(std::string("\0v\0", 3)) + VariantForm(CKTVariant("xy")) + Zeros(1));
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

// The stream ends behind the kind of the last value, a blob: its size is
// missing.
TEST(StreamForm, ACutStreamGivesWhatWasRead) {
    auto source = NewTree();
    Set(source.get(), "a\\x", CKTVariant(1));
    Set(source.get(), "v", CKTVariant(2));
    Set(source.get(), "w", CKTVariant(KTBlob(3)));
    Bytes bytes = Saved(source.get());
    const std::string form(bytes.begin(), bytes.end());
    bytes.resize(form.rfind(std::string("w\0", 2)) + 2 + sizeof(tagKTVARIANT::vt));
    Ref<IParam> tree;
    EXPECT_EQ(Load(bytes, tree), 1);
    EXPECT_EQ(static_cast<int>(ValueAt(tree.get(), "a\\x")), 1);
    EXPECT_EQ(ValueNames(tree.get()), Names{"v"});
}

// A value of a kind beyond the last, and a stored object longer than the
// stream.
TEST(StreamForm, ABrokenValueEmptiesTheTreeAndFails) {
    for (const Bytes& bytes : {Text(std::string("\0v\0\x63\0", 5)),
                               Text(std::string("\0v\0\x12\0Unknown\0\xE8\x03\0\0payload", 22))}) {
        Ref<IParam> tree;
        EXPECT_EQ(Load(bytes, tree), 0) << bytes.size();
        EXPECT_TRUE(ValueNames(tree.get()).empty()) << bytes.size();
        EXPECT_TRUE(SectionNames(tree.get()).empty()) << bytes.size();
    }
}

// A save of a root with the sections "" and "s" and the value "v", where "s"
// has the value "w". No value is found: each goes as an empty variant.
struct ScriptedSave {
    explicit ScriptedSave(const char* failing) {
        script.failing = failing;
        script.watched = stream.get();
        result = SaveParamToXStream(stream.get(), root.get());
    }
    Ref<IXStream> stream{new_StreamOnMemory()};
    CScriptedTree::Script script;
    Ref<IParam> child{new CScriptedTree(script, "s", {}, {"w"})};
    Ref<IParam> root{new CScriptedTree(script, "root", {"", "s"}, {"v"}, child.get())};
    int result;
};

// Each name goes on the stream before its section or value is asked for,
// and the values are listed behind the sections. A file failure ends the
// save of its own level of the tree with 0; the level above goes on.
TEST(StreamForm, ASaveWritesEachNameFirstAndAFailureEndsOnlyItsLevel) {
    const Bytes empty = VariantForm(CKTVariant());
    const Bytes childForm = Zeros(1) + Text(std::string("w\0", 2)) + empty + Zeros(1);
    const Bytes rootValues = Text(std::string("v\0", 2)) + empty + Zeros(1);
    const Bytes named = Text(std::string("s\0", 2));
    struct Case {
        const char* failing;
        int result;
        Bytes form;
    };
    const Case cases[] = {
        {"", 1, named + childForm + Zeros(1) + rootValues},
        {"root.EnumSections", 0, Bytes()},
        {"s.EnumValues", 1, named + Zeros(2) + rootValues},
        {"root.EnumValues", 0, named + childForm + Zeros(1)},
    };
    for (const Case& c : cases) {
        const ScriptedSave save(c.failing);
        EXPECT_EQ(save.result, c.result) << c.failing;
        EXPECT_EQ(AllBytes(save.stream.get()), c.form) << c.failing;
    }
    const size_t behindV = named.size() + childForm.size() + 1 + 2;
    EXPECT_EQ(ScriptedSave("").script.calls,
              "root.EnumSections root.GetSection(s) s.EnumSections s.EnumValues s.GetValue(w)@5 "
              "root.EnumValues root.GetValue(v)@" +
                  std::to_string(behindV) + " ");
}

// A file failure while a level is emptied ends that level with 0, and the
// level above goes on.
TEST(StreamForm, AFailingTreeEndsItsOwnLevelOfTheLoad) {
    const std::pair<const char*, int> cases[] = {
        {"", 1}, {"root.DeleteAllSections", 0}, {"s.DeleteAllValues", 1}};
    for (const auto& [failing, result] : cases) {
        CScriptedTree::Script script;
        script.failing = failing;
        Ref<IParam> child(new CScriptedTree(script, "s", {}, {}));
        Ref<IParam> root(new CScriptedTree(script, "root", {}, {}, child.get()));
        Ref<IXStream> stream(new_StreamOnMemory());
        stream->WriteString("s");
        stream->Write("\0\0\0\0", 4);
        stream->Seek(0, 0);
        EXPECT_EQ(LoadParamFromXStream(stream.get(), root.get()), result) << failing;
    }
}

// A section the tree cannot make (null from CreateSection) is read into
// nothing: the values behind it still reach their own section.
TEST(StreamForm, ASectionTheTreeCannotMakeIsReadPast) {
    auto source = NewTree();
    Set(source.get(), "s\\t\\deep", CKTVariant(1));
    Set(source.get(), "s\\inner", CKTVariant(2));
    Set(source.get(), "after", CKTVariant(3));
    const Bytes form = Saved(source.get());
    CScriptedTree::Script script;
    Ref<IParam> refusing(new CScriptedTree(script, "root", {}, {}));
    Ref<IXStream> stream(new_StreamOnMemory());
    stream->Write(form.data(), static_cast<unsigned>(form.size()));
    stream->Seek(0, 0);
    EXPECT_EQ(LoadParamFromXStream(stream.get(), refusing.get()), 1);
    EXPECT_EQ(script.calls, "root.DeleteAllSections root.DeleteAllValues root.CreateSection(s) root.SetValue(after) ");
}

// The code a save fails with, XE_NONE when it does not.
DWORD SaveFailure(IParam* tree) {
    Ref<IXStream> stream(new_StreamOnMemory());
    return FailureOf([&] { SaveParamToXStream(stream.get(), tree); });
}

TEST(StreamForm, NamesTheFormCannotCarryAreRefusedOnSave) {
    for (const std::string& name : {std::string("line\nfeed"), std::string(1023, 'n')}) {
        auto tree = NewTree();
        Set(tree.get(), name.c_str(), CKTVariant(1));
        EXPECT_EQ(SaveFailure(tree.get()), static_cast<DWORD>(XE_BAD_ARGUMENT)) << name.size();
    }
    // An empty name would end the list of values: a back end that passes it on.
    CScriptedTree::Script script;
    Ref<IParam> unnamed(new CScriptedTree(script, "root", {}, {""}));
    EXPECT_EQ(SaveFailure(unnamed.get()), static_cast<DWORD>(XE_BAD_ARGUMENT));
    auto tree = NewTree();
    Set(tree.get(), std::string(1022, 'n').c_str(), CKTVariant(1));
    Ref<IParam> odd;  // an unknown class whose name ended at a line feed
    ASSERT_EQ(Load(Text(std::string("\0v\0\x12\0Odd\n\0\0\0\0\0", 14)), odd), 1);
    EXPECT_EQ(SaveFailure(odd.get()), static_cast<DWORD>(XE_BAD_ARGUMENT));
    Ref<IParam> back;
    EXPECT_EQ(Load(Saved(tree.get()), back), 1);
    EXPECT_EQ(ValueNames(back.get()), Names{std::string(1022, 'n')});
}

}  // namespace
}  // namespace kt::test
