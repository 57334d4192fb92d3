// The parameter tree in a compound storage, seen from both sides: through
// IParam, and in the storage itself, read by the storage's own streams and
// by an independent reader of compound files.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "kticore/params/ParamTools.h"
#include "kticore/params/StorageParam.h"
#include "params/StorageParam.h"
#include "tests/params/AllKinds.h"
#include "tests/params/ParamTestSupport.h"
#include "tests/storage/IndependentReader.h"
#include "tests/storage/StreamBytes.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using kt::test::FailureOf;
using kt::test::Hex;
using kt::test::kMissing;
using kt::test::Ref;
using kt::test::ScratchDirectory;
using kt::test::Set;
using kt::test::ValueAt;
using kt::test::WideString;
using kt::test::WriteText;

using StorageRef = Ref<IXStorage>;
using TreeRef = Ref<IParam>;

// Lines of a listing put in its order.
std::string Sorted(const std::string& text) {
    std::vector<std::string> lines;
    for (size_t start = 0, end; (end = text.find('\n', start)) != std::string::npos;
         start = end + 1)
        lines.push_back(text.substr(start, end - start + 1));
    std::sort(lines.begin(), lines.end());
    std::string sorted;
    for (const std::string& line : lines)
        sorted += line;
    return sorted;
}

// Every element below `storage`, as the independent reader lists a file:
// sorted lines "storage PATH" and "stream PATH HEX".
std::string Listing(IXStorage* storage, const std::string& prefix = "") {
    std::string text;
    for (const std::string& name : kt::test::NamesOf(storage->EnumStreams()))
        text +=
            "stream " + prefix + name + " " + Hex(kt::test::ReadText(storage, name.c_str())) + "\n";
    for (const std::string& name : kt::test::NamesOf(storage->EnumStorages())) {
        StorageRef child(storage->OpenStorage(name.c_str()));
        text += "storage " + prefix + name + "\n" + Listing(child.get(), prefix + name + "/");
    }
    return Sorted(text);
}

CKTVariant Byte(unsigned char value) { return CKTVariant(value); }

// The tree that most cases start from, and its listing.
void FillBase(IParam* root) {
    Set(root, "v", CKTVariant(1));
    Set(root, "a\\x", Byte(2));
    Set(root, "a\\c\\y", Byte(3));
}
const std::string kBase =
    "storage a\n"
    "storage a/c\n"
    "stream a/c/y 020003\n"
    "stream a/x 020002\n"
    "stream v 050001000000\n";

// A tree on a storage in memory, which the test holds as well.
struct Tree {
    Tree() : storage(new_Storage(nullptr, 0)), root(new_IXStorParam(storage.get())) {}
    StorageRef storage;
    TreeRef root;
};

struct ShapeCase {
    const char* name;
    std::function<void(IParam* root)> action;
    std::string expected;
};

class Shape : public ::testing::TestWithParam<ShapeCase> {};

TEST_P(Shape, OfTheStorageAfterwards) {
    Tree tree;
    FillBase(tree.root.get());
    GetParam().action(tree.root.get());
    EXPECT_EQ(Listing(tree.storage.get()), Sorted(GetParam().expected));
}

const ShapeCase kShapes[] = {
    {"SetValueThroughAnExistingSectionKeepsItsContent",
     [](IParam* root) { Set(root, "a\\z", Byte(4)); }, kBase + "stream a/z 020004\n"},
    {"GetSectionMakesEveryMissingStepOnlyWithCreateAndKeepsWhatIsThere",
     [](IParam* root) {
         EXPECT_NE(TreeRef(root->GetSection("n\\m", 1)), nullptr);
         EXPECT_NE(TreeRef(root->GetSection("a\\c", 1)), nullptr);
         EXPECT_EQ(TreeRef(root->GetSection("a\\q\\r", 0)), nullptr);
     },
     kBase + "storage n\nstorage n/m\n"},
    {"CreateSectionReplacesItsFirstStepWithAllItsContentAndAValueOfItsName",
     [](IParam* root) {
         EXPECT_NE(TreeRef(root->CreateSection("a\\c")), nullptr);
         EXPECT_NE(TreeRef(root->CreateSection("v")), nullptr);
     },
     "storage a\nstorage a/c\nstorage v\n"},
    {"DeleteSectionThroughAPathRemovesTheLastStepOnly",
     [](IParam* root) { root->DeleteSection("a\\c"); },
     "storage a\nstream a/x 020002\nstream v 050001000000\n"},
    {"DeleteAllSectionsKeepsTheValues", [](IParam* root) { root->DeleteAllSections(); },
     "stream v 050001000000\n"},
    {"DeleteAllValuesKeepsTheSections",
     [](IParam* root) { TreeRef(root->GetSection("a", 0))->DeleteAllValues(); },
     "storage a\nstorage a/c\nstream a/c/y 020003\nstream v 050001000000\n"},
    {"ClearOfTheRootEmptiesTheStorage", [](IParam* root) { root->Clear(); }, ""},
    {"TheEmptyNameIsTheDefaultStreamButDeleteValueTakesNamesAsGiven",
     [](IParam* root) {
         Set(root, "", Byte(5));
         root->DeleteValue("");
         root->DeleteValue("unknown");
         kt::test::Names names = kt::test::ValueNames(root);
         std::sort(names.begin(), names.end());
         EXPECT_EQ(names, (kt::test::Names{"@", "v"}));
     },
     kBase + "stream @ 020005\n"},
    {"AValueAndASectionOfOneNameLeaveEachOtherAlone",
     [](IParam* root) {
         Set(root, "a", Byte(4));
         root->DeleteValue("a");
         EXPECT_EQ(TreeRef(root->GetSection("v", 1)), nullptr);
         Set(root, "v\\w", Byte(4));
     },
     kBase},
    {"AnEmptySectionNameIsRefusedBeforeAnythingIsMade",
     [](IParam* root) {
         for (const char* path : {"", "z\\", "\\z", "z\\\\y"}) {
             EXPECT_EQ(TreeRef(root->GetSection(path, 1)), nullptr) << path;
             EXPECT_EQ(TreeRef(root->CreateSection(path)), nullptr) << path;
         }
         Set(root, "z\\\\b", Byte(4));
         Set(root, "\\b", Byte(4));
     },
     kBase},
    {"AShorterValueLeavesTheOlderBytesBehindItsEnd",
     [](IParam* root) {
         Set(root, "v", Byte(9));
         EXPECT_TRUE(ValueAt(root, "v") == Byte(9));
     },
     "storage a\nstorage a/c\nstream a/c/y 020003\nstream a/x 020002\nstream v 020009000000\n"},
};

struct CaseName {
    template <class Case>
    std::string operator()(const ::testing::TestParamInfo<Case>& info) const {
        return info.param.name;
    }
};
INSTANTIATE_TEST_SUITE_P(StorageParam, Shape, ::testing::ValuesIn(kShapes), CaseName());

// A path of 512 bytes or more does not fit the buffer that splits it.
std::string PathOfLength(size_t length) { return "s\\" + std::string(length - 2, 'x'); }

struct ReadCase {
    const char* name;
    const char* stored;  // bytes of the stream "raw" written beside the base tree; null for none
    std::string path;
    bool variantKept;  // else the caller's variant is cleared
};

class Read : public ::testing::TestWithParam<ReadCase> {};

TEST_P(Read, GivesNothingAndTouchesNothingElse) {
    Tree tree;
    FillBase(tree.root.get());
    if (GetParam().stored != nullptr)
        WriteText(tree.storage.get(), "raw", GetParam().stored);
    const std::string before = Listing(tree.storage.get());
    CKTVariant value(5);
    EXPECT_EQ(tree.root->GetValue(GetParam().path.c_str(), &value), 0);
    EXPECT_TRUE(value == (GetParam().variantKept ? CKTVariant(5) : CKTVariant()));
    EXPECT_EQ(Listing(tree.storage.get()), before);
}

const ReadCase kReads[] = {
    {"MissingValueClearsTheVariant", nullptr, "nothing", false},
    {"MissingSectionKeepsTheVariant", nullptr, "q\\v", true},
    {"PathBeyondTheBufferKeepsTheVariant", nullptr, PathOfLength(512), true},
    {"UnknownKind", "\x99", "raw", false},
    {"EmptyStream", "", "raw", false},
    {"BlobWithoutItsLength", "\x11", "raw", false},
};
INSTANTIATE_TEST_SUITE_P(StorageParam, Read, ::testing::ValuesIn(kReads), CaseName());

TEST(StorageParam, NamesTheStorageRefusesAndOverlongPathsStoreNothing) {
    Tree tree;
    FillBase(tree.root.get());
    const std::string refused(32, 'n');  // the format holds 31 units
    IParam* root = tree.root.get();
    Set(root, refused.c_str(), Byte(1));
    Set(root, (refused + "\\v").c_str(), Byte(1));
    EXPECT_EQ(TreeRef(root->CreateSection(refused.c_str())), nullptr);
    EXPECT_EQ(TreeRef(root->GetSection(refused.c_str(), 1)), nullptr);
    EXPECT_EQ(ValueAt(root, refused.c_str()).vt, kMissing);
    EXPECT_EQ(FailureOf([&] { Set(root, PathOfLength(512).c_str(), Byte(1)); }), XE_BAD_ARGUMENT);
    EXPECT_EQ(Listing(tree.storage.get()), kBase);
    // One byte shorter, the path reaches the storage, which makes the section
    // and refuses the name.
    Set(root, PathOfLength(511).c_str(), Byte(1));
    EXPECT_EQ(Listing(tree.storage.get()), Sorted(kBase + "storage s\n"));
}

// The operations of IParam that give something (a section, an enumerator, a
// value found), each answering whether it did.
struct Giving {
    const char* name;
    std::function<bool(IParam*)> call;
};
const Giving kGiving[] = {
    {"CreateSection", [](IParam* p) { return TreeRef(p->CreateSection("n")) != nullptr; }},
    {"GetSection", [](IParam* p) { return TreeRef(p->GetSection("n\\m", 1)) != nullptr; }},
    {"EnumSections",
     [](IParam* p) { return Ref<CTEnum<const char*>>(p->EnumSections()) != nullptr; }},
    {"GetValue", [](IParam* p) { return ValueAt(p, "x").vt != kMissing; }},
    {"GetValueInASection", [](IParam* p) { return ValueAt(p, "c\\y").vt != kMissing; }},
    {"EnumValues", [](IParam* p) { return Ref<CTEnum<const char*>>(p->EnumValues()) != nullptr; }},
};
// The operations that give nothing: what they did shows in the storage.
struct Acting {
    const char* name;
    std::function<void(IParam*)> call;
};
const Acting kActing[] = {
    {"DeleteSection", [](IParam* p) { p->DeleteSection("c"); }},
    {"DeleteAllSections", [](IParam* p) { p->DeleteAllSections(); }},
    {"SetValue", [](IParam* p) { Set(p, "w", Byte(1)); }},
    {"SetValueInASection", [](IParam* p) { Set(p, "n\\w", Byte(1)); }},
    {"DeleteValue", [](IParam* p) { p->DeleteValue("x"); }},
    {"DeleteAllValues", [](IParam* p) { p->DeleteAllValues(); }},
    {"Clear", [](IParam* p) { p->Clear(); }},
};

TEST(StorageParam, AfterClearASectionIsGoneAndItsObjectDoesNothing) {
    Tree tree;
    FillBase(tree.root.get());
    TreeRef section(tree.root->GetSection("a", 0));
    section->Clear();
    EXPECT_EQ(Listing(tree.storage.get()), "stream v 050001000000\n");
    for (const Giving& operation : kGiving)
        EXPECT_FALSE(operation.call(section.get())) << operation.name;
    for (const Acting& operation : kActing)
        operation.call(section.get());
    EXPECT_EQ(section->QueryInterface(typeid(IXStorage), nullptr), 0);
    CKTVariant kept(5);
    EXPECT_EQ(section->GetValue("x", &kept), 0);
    EXPECT_TRUE(kept == CKTVariant(5));
    EXPECT_EQ(Listing(tree.storage.get()), "stream v 050001000000\n");
}

// A tree whose root lies in a sub-storage ends only what it made: a sibling
// of the root's own name in the parent storage stays.
TEST(StorageParam, ClearOfARootInASubStorageLeavesTheParentStorage) {
    Tree outer;
    Set(outer.root.get(), "Root\\k", Byte(1));
    StorageRef inner(outer.storage->CreateStorage("inner"));
    TreeRef root(new_IXStorParam(inner.get()));
    Set(root.get(), "s\\w", Byte(2));
    root->Clear();
    inner.reset();
    EXPECT_EQ(Listing(outer.storage.get()), "storage Root\nstorage inner\nstream Root/k 020001\n");
}

// A storage that passes every call to a real one, and throws what `failure`
// throws before each call, given its name. The sub-storages it opens are
// passed through the same way, with no failure of their own, and answer it
// as their parent.
class CFailingStorage final : public CKTUnknownImpl<IXStorage> {
public:
    explicit CFailingStorage(IXStorage* inner, IXStorage* parent = nullptr)
        : inner(Held(inner)), parent(Held(parent)) {}

    std::function<void(const std::string& call)> failure;

    IXStorage* CreateStorage(const char* name) override {
        return Check("CreateStorage"), Child(inner->CreateStorage(name));
    }
    IXStorage* OpenStorage(const char* name) override {
        return Check("OpenStorage"), Child(inner->OpenStorage(name));
    }
    int DestroyStorage(const char* name) override {
        return Check("DestroyStorage"), inner->DestroyStorage(name);
    }
    IXStorage* GetParent() override {
        Check("GetParent");
        return parent ? Held(parent.get()) : inner->GetParent();
    }
    CTEnum<const char*>* EnumStorages() override {
        return Check("EnumStorages"), inner->EnumStorages();
    }
    IXStream* CreateStream(const char* name) override {
        return Check("CreateStream"), inner->CreateStream(name);
    }
    IXStream* OpenStream(const char* name) override {
        return Check("OpenStream"), inner->OpenStream(name);
    }
    int DestroyStream(const char* name) override {
        return Check("DestroyStream"), inner->DestroyStream(name);
    }
    int Commit() override { return Check("Commit"), inner->Commit(); }
    CTEnum<const char*>* EnumStreams() override {
        return Check("EnumStreams"), inner->EnumStreams();
    }
    const KTWCHAR* GetName() override { return inner->GetName(); }

private:
    void Check(const std::string& call) const {
        if (failure)
            failure(call);
    }
    static IXStorage* Held(IXStorage* storage) {
        if (storage != nullptr)
            storage->AddRef();
        return storage;
    }
    IXStorage* Child(IXStorage* opened) {
        StorageRef held(opened);
        return new CFailingStorage(opened, this);
    }
    StorageRef inner;
    StorageRef parent;
};

void ThrowAccessDenied(const std::string&) { throw CXFileException(XE_ACCESS_DENIED, nullptr, 0); }

TEST(StorageParam, FailuresOfTheStorageAreSwallowedAndOtherExceptionsPass) {
    const auto check = [](const char* name, const std::function<void(IParam*)>& run) {
        Tree tree;
        FillBase(tree.root.get());
        Ref<CFailingStorage> failing(new CFailingStorage(tree.storage.get()));
        TreeRef root(new_IXStorParam(failing.get()));
        failing->failure = ThrowAccessDenied;
        run(root.get());
        failing->failure = [](const std::string&) {
            throw std::runtime_error("not the storage's");
        };
        EXPECT_THROW(run(root.get()), std::runtime_error) << name;
        failing->failure = nullptr;
        EXPECT_EQ(Listing(tree.storage.get()), kBase) << name;
    };
    for (const Giving& operation : kGiving)
        check(operation.name,
              [&](IParam* p) { EXPECT_FALSE(operation.call(p)) << operation.name; });
    for (const Acting& operation : kActing)
        check(operation.name, operation.call);
}

// The parent storage refuses to destroy the section: its content is gone
// already, and the section has ended all the same.
TEST(StorageParam, ASectionWhoseParentStorageFailsInClearEndsAnyway) {
    Tree tree;
    FillBase(tree.root.get());
    Ref<CFailingStorage> failing(new CFailingStorage(tree.storage.get()));
    TreeRef section(TreeRef(new_IXStorParam(failing.get()))->GetSection("a", 0));
    failing->failure = [](const std::string& call) {
        if (call == "DestroyStorage")
            ThrowAccessDenied(call);
    };
    section->Clear();
    failing->failure = nullptr;
    EXPECT_EQ(Ref<CTEnum<const char*>>(section->EnumValues()), nullptr);
    EXPECT_EQ(Listing(tree.storage.get()), "storage a\nstream v 050001000000\n");
}

// Each section answers its own storage, and holds the tree it was opened from.
TEST(StorageParam, ASectionAnswersItsStorageAndItsParent) {
    Tree tree;
    TreeRef first(tree.root->GetSection("a", 1));
    TreeRef second(first->GetSection("b", 1));
    const auto parentOf = [](IParam* param) {
        return TreeRef(static_cast<kt::params::CIXStorParam*>(param)->GetParent());
    };
    EXPECT_EQ(parentOf(tree.root.get()), nullptr);
    EXPECT_EQ(parentOf(first.get()).get(), tree.root.get());
    EXPECT_EQ(parentOf(second.get()).get(), first.get());
    void* found = nullptr;
    ASSERT_EQ(second->QueryInterface(typeid(IXStorage), &found), 1);
    StorageRef sectionStorage(static_cast<IXStorage*>(found));
    Set(second.get(), "v", Byte(1));
    EXPECT_EQ(kt::test::ReadText(sectionStorage.get(), "v"), std::string("\x02\x00\x01", 3));
    EXPECT_EQ(tree.root->QueryInterface(typeid(IRegisterIface), nullptr), 1);
}

TEST(StorageParam, ASectionOpensOnceAtATimeAndIsNotMadeAnewWhileHeld) {
    Tree tree;
    TreeRef second(new_IXStorParam(tree.storage.get()));
    TreeRef held(tree.root->GetSection("a", 1));
    Set(held.get(), "kept", Byte(2));
    EXPECT_EQ(TreeRef(second->GetSection("a", 0)), nullptr);
    // A section in use is not made anew over its content.
    EXPECT_EQ(TreeRef(second->GetSection("a", 1)), nullptr);
    EXPECT_TRUE(ValueAt(held.get(), "kept") == Byte(2));
    held.reset();
    EXPECT_NE(TreeRef(second->GetSection("a", 0)), nullptr);
    EXPECT_EQ(Listing(tree.storage.get()), "storage a\nstream a/kept 020002\n");
}

// A file opened for writing is transacted: what the tree wrote reaches it as
// the tree's objects go, children before parents, whatever order the caller
// releases them in, while the caller still holds the root storage.
class ReleaseOrder : public ::testing::TestWithParam<bool> {};

TEST_P(ReleaseOrder, ChangesReachATransactedFileWhenTheObjectsGo) {
    ScratchDirectory directory;
    const WideString path = directory / KTW("tree.stg");
    StorageRef(new_Storage(path.c_str(), 0));
    StorageRef storage(open_Storage(path.c_str(), 0));
    TreeRef root(new_IXStorParam(storage.get()));
    TreeRef section(root->GetSection("a\\b", 1));
    Set(section.get(), "v", Byte(7));
    Set(root.get(), "w", Byte(8));
    if (GetParam())
        root.reset();
    section.reset();
    root.reset();
    EXPECT_EQ(kt::test::IndependentTree(path),
              "storage a\nstorage a/b\nstream a/b/v 020007\nstream w 020008\n");
}
INSTANTIATE_TEST_SUITE_P(StorageParam, ReleaseOrder, ::testing::Bool(),
                         [](const ::testing::TestParamInfo<bool>& order) {
                             return std::string(order.param ? "RootFirst" : "SectionFirst");
                         });

// The storage keeps every kind the stored form writes, and drops a kind
// beyond the last.
TEST(StorageParam, EveryKindComesBackAndAKindBeyondTheLastIsDropped) {
    Tree tree;
    TreeRef memory(new_MemParam());
    kt::test::FillWithEveryKind(memory.get(), true);
    Param_CopyTo(memory.get(), tree.root.get());
    EXPECT_EQ(Param_Cmp(memory.get(), tree.root.get()), 1);
    EXPECT_EQ(Param_Cmp(tree.root.get(), memory.get()), 1);
    CKTVariant beyond(1);
    beyond.vt = KTVT_WSTR + 1;
    Set(tree.root.get(), "beyond", beyond);
    beyond.vt = KTVT_INT;
    EXPECT_EQ(kt::test::ReadText(tree.storage.get(), "beyond"), "<none>");
}

}  // namespace
