// The four back ends together: a tree with every kind goes through each pair
// of them, and what each keeps, drops or changes is what the table here says,
// checked with the tools' own compare.
#include <windows.h>

#include <functional>
#include <string>
#include <tuple>

#include "kticore/objects/Persist.h"
#include "kticore/params/IniFileParam.h"
#include "kticore/params/ParamTools.h"
#include "kticore/params/RegistryParam.h"
#include "kticore/params/StorageParam.h"
#include "kticore/storage/Storage.h"
#include "tests/params/AllKinds.h"
#include "tests/support/ScratchDirectory.h"

namespace kt::test {
namespace {

constexpr wchar_t kRegistryRoot[] = L"Software\\kticore-back-end-tests";

// The stored form of a variant: how objects, which compare by pointer, are
// compared across back ends.
std::string StoredForm(const tagKTVARIANT& value) {
    Ref<IXStream> stream(new_StreamOnMemory());
    stream->WriteVariant(&value);
    std::string bytes(stream->GetLength(), '\0');
    stream->Seek(0, 0);
    stream->Read(bytes.data(), static_cast<unsigned>(bytes.size()));
    return bytes;
}

// An object of a class nobody registered: it travels as the bytes it was
// read from.
CKTVariant ForeignObject() {
    Ref<IXStream> stream(new_StreamOnMemory());
    stream->WriteString("Foreign.Shape");
    stream->WriteDWord(3);
    stream->Write("xyz", 3);
    stream->Seek(0, 0);
    CKTVariant value;
    value.vt = KTVT_OBJECT;
    ReadObjectFromXStream(stream.get(), &value.punkVal);
    return value;
}

// Every value below `tree`, by its path.
void ForEachValue(IParam* tree, const std::string& path,
                  const std::function<void(const std::string&, const CKTVariant&)>& visit) {
    for (const std::string& name : ValueNames(tree))
        visit(path + name, ValueAt(tree, name.c_str()));
    for (const std::string& name : SectionNames(tree)) {
        Ref<IParam> section(tree->GetSection(name.c_str(), 0));
        ForEachValue(section.get(), path + name + "\\", visit);
    }
}

constexpr unsigned Bit(unsigned kind) { return 1u << kind; }
// Kinds 0 to 19.
constexpr unsigned kEveryKind = Bit(20) - 1;

struct BackEnd {
    const char* name;
    // Bit k set: a value of kind k is kept; others are dropped.
    unsigned keptKinds;
    // The registry gives wide text back as narrow text.
    bool wideTextReadsNarrow;
    // A new empty tree of this back end.
    std::function<Ref<IParam>()> open;

    bool Keeps(unsigned kind) const { return (keptKinds & Bit(kind)) != 0; }
};

class BackEnds : public ::testing::Test {
protected:
    void TearDown() override { RegDeleteTreeW(HKEY_CURRENT_USER, kRegistryRoot); }

    WideString Fresh(const char* extension) {
        const std::string leaf = "t" + std::to_string(++count) + extension;
        return directory / WideString(leaf.begin(), leaf.end());
    }
    Ref<IParam> RegistryTree() {
        HKEY key;
        const std::wstring path = std::wstring(kRegistryRoot) + L"\\t" + std::to_wstring(++count);
        EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                  nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        RegCloseKey(key);
        return Ref<IParam>(new_IParamCUReg(path.c_str()));
    }
    Ref<IParam> StorageTree() {
        Ref<IXStorage> storage(new_Storage(Fresh(".cfd").c_str(), 0));
        return Ref<IParam>(new_IXStorParam(storage.get()));
    }

    // Copies `from`, which holds `expected`, into a new tree of `to`, shows
    // that it holds what its row keeps, changed as it changes it, and lacks
    // what it drops, and gives the new tree and what it holds.
    std::pair<Ref<IParam>, Ref<IParam>> Leg(IParam* from, IParam* expected, const BackEnd& to) {
        SCOPED_TRACE(to.name);
        Ref<IParam> tree = to.open();
        Param_CopyTo(from, tree.get());
        Ref<IParam> kept(new_MemParam());
        ForEachValue(expected, "", [&](const std::string& path, const CKTVariant& value) {
            const CKTVariant copied = ValueAt(tree.get(), path.c_str());
            if (!to.Keeps(value.vt))
                EXPECT_EQ(copied.vt, kMissing) << path << ": a kind the back end drops was kept";
            else if (value.vt == KTVT_OBJECT)  // objects compare by pointer: by their bytes here
                EXPECT_EQ(StoredForm(copied), StoredForm(value)) << path;
            else if (value.vt == KTVT_WSTR && to.wideTextReadsNarrow)
                Set(kept.get(), path.c_str(), CKTVariant(CXString(value.pwszVal)));
            else
                Set(kept.get(), path.c_str(), value);
        });
        EXPECT_EQ(Param_Cmp(kept.get(), tree.get()), 1);
        if (to.Keeps(KTVT_OBJECT))
            ForEachValue(expected, "", [&](const std::string& path, const CKTVariant& value) {
                if (value.vt == KTVT_OBJECT)
                    Set(kept.get(), path.c_str(), value);
            });
        return {std::move(tree), std::move(kept)};
    }

    // A tree in memory with every kind, an object among them, at the root:
    // the registry takes a `\\` in a value's path as part of its name.
    static Ref<IParam> EveryKind() {
        Ref<IParam> tree = NewTree();
        FillWithEveryKind(tree.get(), true);
        Set(tree.get(), "object", ForeignObject());
        return tree;
    }

    ScratchDirectory directory;
    int count = 0;
    const BackEnd memory{"memory", kEveryKind, false, [] { return NewTree(); }};
    const BackEnd profile{"profile file", kEveryKind & ~Bit(KTVT_OBJECT) & ~Bit(KTVT_WSTR), false,
                          [this] { return Ref<IParam>(new_IParamIniFile(Fresh(".ini").c_str())); }};
    const BackEnd registry{"registry", kEveryKind & ~Bit(KTVT_OBJECT), true,
                           [this] { return RegistryTree(); }};
    const BackEnd storage{"storage", kEveryKind, false, [this] { return StorageTree(); }};
};

// One tree round all four and back into memory: each leg keeps what its row
// keeps of what came to it, so the end holds what every back end keeps.
TEST_F(BackEnds, OneTreeGoesRoundAllFourAndBack) {
    const Ref<IParam> start = EveryKind();
    Ref<IParam> tree, held;
    IParam* from = start.get();
    IParam* expected = start.get();
    for (const BackEnd* to : {&profile, &registry, &storage, &memory}) {
        std::tie(tree, held) = Leg(from, expected, *to);
        from = tree.get();
        expected = held.get();
    }
    EXPECT_EQ(ValueAt(tree.get(), "object").vt, kMissing);  // the profile file dropped it
}

TEST_F(BackEnds, EveryPairCopiesWhatBothKeep) {
    const Ref<IParam> start = EveryKind();
    for (const BackEnd* from : {&memory, &profile, &registry, &storage}) {
        for (const BackEnd* to : {&memory, &profile, &registry, &storage}) {
            SCOPED_TRACE(std::string(from->name) + " to " + to->name);
            auto [source, held] = Leg(start.get(), start.get(), *from);
            Leg(source.get(), held.get(), *to);
        }
    }
}

}  // namespace
}  // namespace kt::test
