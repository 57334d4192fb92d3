// The storage over the platform's compound file: elements, names, parents,
// enumeration, the open flags, transactions, and how failures come out.
#include <gtest/gtest.h>

#include <filesystem>

#include "kticore/files/FileUtilities.h"
#include "tests/storage/StorageSupport.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/TemporaryDirectory.h"

namespace {

using kt::test::ElementNames;
using kt::test::ReadText;
using kt::test::Ref;
using kt::test::ScratchDirectory;
using kt::test::FileFailure;
using kt::test::FileFailureOf;
using kt::test::StorageRef;
using kt::test::Wide;
using kt::test::WideString;
using kt::test::WriteText;

using Strings = std::vector<std::string>;

bool Exists(const WideString& name) { return std::filesystem::exists(std::filesystem::path(name)); }

TEST(Storage, NestedElementsRoundTripInMemory) {
    StorageRef root(new_Storage(nullptr, 0));
    EXPECT_EQ(Wide(root->GetName()), WideString());
    EXPECT_EQ(root->GetParent(), nullptr);
    WriteText(root.get(), "top", "top text");
    {
        StorageRef child(root->CreateStorage("child"));
        StorageRef grandchild(child->CreateStorage("grandchild"));
        WriteText(grandchild.get(), "deep", "deep text");
        StorageRef parent(grandchild->GetParent());
        EXPECT_EQ(parent.get(), child.get());
    }
    // Past the block of memory the storage starts with.
    const std::string large(300000, 'm');
    WriteText(root.get(), "large", large);
    StorageRef grandchild(StorageRef(root->OpenStorage("child"))->OpenStorage("grandchild"));
    EXPECT_EQ(ReadText(grandchild.get(), "deep"), "deep text");
    EXPECT_EQ(ReadText(root.get(), "top"), "top text");
    EXPECT_EQ(ReadText(root.get(), "large"), large);
}

TEST(Storage, EnumerationsListOneKindEachAndOutliveTheStorage) {
    CTEnum<const char*>* streams;
    CTEnum<const char*>* storages;
    CTEnum<const char*>* empty;
    Strings platformOrder;
    {
        StorageRef root(new_Storage(nullptr, 0));
        for (const char* name : {"zz", "b", "aaa"})
            WriteText(root.get(), name, name);
        StorageRef child(root->CreateStorage("sub"));
        streams = root->EnumStreams();
        storages = root->EnumStorages();
        empty = child->EnumStreams();
        platformOrder = kt::test::OleStreamNames(root.get());
    }
    EXPECT_EQ(ElementNames(streams), platformOrder);
    EXPECT_EQ(platformOrder.size(), 3u);
    EXPECT_EQ(ElementNames(storages), Strings{"sub"});
    EXPECT_EQ(ElementNames(empty), Strings{});
}

TEST(Storage, DestroyOfEitherNameRemovesAnElementOfEitherKind) {
    StorageRef root(new_Storage(nullptr, 0));
    StorageRef(root->CreateStorage("storage"));
    WriteText(root.get(), "stream", "x");
    EXPECT_EQ(root->DestroyStream("storage"), S_OK);
    EXPECT_EQ(root->DestroyStorage("stream"), S_OK);
    EXPECT_EQ(ElementNames(root->EnumStorages()), Strings{});
    EXPECT_EQ(ElementNames(root->EnumStreams()), Strings{});
}

// Wine 8 crashes committing a direct sub-storage whose element its parent
// destroyed while it was open; the library does not commit it, at Commit or
// at release.
TEST(Storage, ASubStorageWhoseElementWasDestroyedIsNotCommitted) {
    StorageRef root(new_Storage(nullptr, 0));
    StorageRef orphan(root->CreateStorage("c"));
    root->DestroyStorage("c");
    EXPECT_EQ(orphan->Commit(), STG_E_REVERTED);
}

TEST(Storage, AnswersForItsOwnInterfaceAlone) {
    StorageRef root(new_Storage(nullptr, 0));
    void* out = &out;
    EXPECT_EQ(root->QueryInterface(typeid(IKTUnknown), &out), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(root->QueryInterface(typeid(IXStorage), nullptr), 1);
    ASSERT_EQ(root->QueryInterface(typeid(IXStorage), &out), 1);
    EXPECT_EQ(out, root.get());
    EXPECT_EQ(root->Release(), 1u);
}

TEST(Storage, SubStoragesKeepTheRootsNameAndFlags) {
    ScratchDirectory directory;
    const WideString path = directory / KTW("flags.stg");
    StorageRef(new_Storage(path.c_str(), 0))->CreateStorage("child")->Release();

    StorageRef reader(open_Storage(path.c_str(), 1));
    StorageRef child(reader->OpenStorage("child"));
    EXPECT_EQ(Wide(child->GetName()), path);
    EXPECT_EQ(child->CreateStream("new"), nullptr);
    EXPECT_EQ(FileFailureOf([&] { child->CreateStorage("new"); }).code, XE_SHARING);
}

// A transacted root and its transacted child: the child's commit reaches the
// root, only the root's commit reaches the file, and a release commits.
TEST(Storage, TransactionsCommitAtReleaseAndRevertDropsWork) {
    ScratchDirectory directory;
    const WideString path = directory / KTW("transacted.stg");
    auto kept = [&] {
        StorageRef child(StorageRef(open_Storage(path.c_str(), 1))->OpenStorage("child"));
        return ReadText(child.get(), "kept");
    };
    WriteText(
        StorageRef(StorageRef(new_Storage(path.c_str(), XSTG_TRANSACTED))->CreateStorage("child"))
            .get(),
        "kept", "before");
    {
        StorageRef root(open_Storage(path.c_str(), 0));
        StorageRef child(root->OpenStorage("child"));
        WriteText(child.get(), "kept", "child committed");
        EXPECT_EQ(child->Commit(), S_OK);
        child.reset();
        static_cast<CStorage*>(root.get())->Revert();
    }
    EXPECT_EQ(kept(), "before");
    {
        StorageRef root(open_Storage(path.c_str(), 0));
        StorageRef child(root->OpenStorage("child"));
        WriteText(child.get(), "kept", "child reverted");
        static_cast<CStorage*>(child.get())->Revert();
    }
    EXPECT_EQ(kept(), "before");
    WriteText(StorageRef(StorageRef(open_Storage(path.c_str(), 0))->OpenStorage("child")).get(),
              "kept", "released");
    EXPECT_EQ(kept(), "released");
}

TEST(Storage, NewStorageOverAPathMakesItsDirectoriesAndReplacesAFile) {
    ScratchDirectory directory;
    const WideString deep = directory / KTW("a/b/deep.stg");
    StorageRef(new_Storage(deep.c_str(), 0));
    EXPECT_TRUE(Exists(deep));

    const WideString plain = directory / KTW("plain.stg");
    kt::test::WriteContent(plain, "not a compound file");
    WriteText(StorageRef(new_Storage(plain.c_str(), 0)).get(), "s", "replaced");
    EXPECT_EQ(ReadText(StorageRef(open_Storage(plain.c_str(), 1)).get(), "s"), "replaced");
}

// A temporary file takes the temporary directory and three characters of the
// prefix "KTPR"; a path given with it is ignored.
struct CreationFlags {
    bool givesPath;
    int flags;
    bool temporary;
    bool remains;
};

TEST(Storage, TemporaryAndDeletedOnReleaseFiles) {
    const CreationFlags cases[] = {
        {true, XSTG_TEMPFILE | XSTG_DELETEONRELEASE, true, false},
        {false, XSTG_TEMPFILE, true, true},
        {true, XSTG_DELETEONRELEASE, false, false},
    };
    for (const CreationFlags& creation : cases) {
        SCOPED_TRACE(creation.flags);
        const kt::test::TemporaryDirectory temporary;
        ScratchDirectory directory;
        const WideString path = directory / KTW("given.stg");
        WideString made;
        {
            StorageRef storage(
                new_Storage(creation.givesPath ? path.c_str() : nullptr, creation.flags));
            made = Wide(storage->GetName());
            EXPECT_TRUE(Exists(made));
        }
        const WideString leaf = std::filesystem::path(made).filename().wstring();
        EXPECT_EQ(made != path, creation.temporary);
        if (creation.temporary) {
            EXPECT_FALSE(Exists(path));
            EXPECT_EQ(std::filesystem::path(made), std::filesystem::path(temporary / leaf));
            EXPECT_EQ(leaf.substr(0, 3), KTW("KTP"));
        }
        EXPECT_EQ(Exists(made), creation.remains);
    }
}

TEST(Storage, OleStorageInAndOut) {
    StorageRef made(new_Storage(nullptr, 0));
    auto* ole = static_cast<IStorage*>(Storage_GetOLEStorage(made.get()));
    // Ours and the caller's; on a miscount the test stops before it releases.
    ASSERT_EQ(ole->AddRef(), 3u);
    ole->Release();
    StorageRef wrapped(new_StorageByOleStorage(ole));
    WriteText(wrapped.get(), "shared", "one storage");
    EXPECT_EQ(ReadText(made.get(), "shared"), "one storage");
    wrapped.reset();
    EXPECT_EQ(ole->Release(), 1u);
}

// An OLE storage's flags come from its mode, and only flags 1 skip the
// commits: a read-only transacted one (flags 3) has its Commit refused by the
// platform, a writable transacted one commits at release.
TEST(Storage, OleStorageFlagsFromItsMode) {
    ScratchDirectory directory;
    const WideString path = directory / KTW("ole.stg");
    StorageRef(new_Storage(path.c_str(), 0));
    auto openOle = [&](DWORD mode) {
        IStorage* ole = nullptr;
        EXPECT_EQ(StgOpenStorage(path.c_str(), nullptr,
                                 mode | STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE, nullptr, 0, &ole),
                  S_OK);
        StorageRef made(new_StorageByOleStorage(ole));
        ole->Release();
        return made;
    };
    EXPECT_NE(openOle(STGM_READ)->Commit(), S_OK);
    WriteText(openOle(STGM_READWRITE).get(), "released", "kept");
    EXPECT_EQ(ReadText(StorageRef(open_Storage(path.c_str(), 1)).get(), "released"), "kept");
}

}  // namespace
