// Compound files on disk: what the library writes is what an independent
// reader finds, and files and names the platform refuses give the failures
// that the platform's status values map to. The statuses are Wine 8's, found
// by running these tests; the library passes them on and adds no test of
// its own.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <vector>

#include "kticore/files/FileUtilities.h"
#include "platform/TextConversion.h"
#include "tests/storage/IndependentReader.h"
#include "tests/storage/StorageSupport.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using kt::test::ElementNames;
using kt::test::ReadText;
using kt::test::ScratchDirectory;
using kt::test::FileFailure;
using kt::test::FileFailureOf;
using kt::test::Hex;
using kt::test::StorageRef;
using kt::test::WideString;
using kt::test::WriteText;

// An element name in the process's ANSI code page, as the interface takes it.
std::string Narrow(const WideString& wide) {
    char narrow[512] = {};
    kt::sys::WideToMultiByte(kt::sys::kAnsiCodePage, wide.c_str(), static_cast<int>(wide.size()),
                             narrow, sizeof narrow - 1);
    return narrow;
}

// The longest name the format holds: 31 units and the terminator.
const std::string kLongestName(31, 'n');

TEST(CompoundFile, AnIndependentReaderFindsTheTreeNamesAndBytes) {
    ScratchDirectory directory;
    const WideString path = directory / KTW("tree.stg");
    const std::string size = Narrow(KTW("Gr\u00f6\u00dfe"));
    const std::string folder = Narrow(KTW("\u00c4rger \u00e9t\u00e9"));
    const std::string binary("\x00\x01\xfe\xff", 4);
    {
        StorageRef root(new_Storage(path.c_str(), 0));
        WriteText(root.get(), size.c_str(), binary);
        WriteText(root.get(), kLongestName.c_str(), "long");
        StorageRef child(root->CreateStorage(folder.c_str()));
        WriteText(child.get(), "empty", "");
        StorageRef(child->CreateStorage("inner"));
        EXPECT_EQ(ElementNames(root->EnumStorages()), std::vector<std::string>{folder});
    }
    EXPECT_EQ(kt::test::IndependentTree(path),
              "storage \xc3\x84rger \xc3\xa9t\xc3\xa9\n"
              "storage \xc3\x84rger \xc3\xa9t\xc3\xa9/inner\n"
              "stream Gr\xc3\xb6\xc3\x9f"
              "e " +
                  Hex(binary) +
                  "\n"
                  "stream " +
                  kLongestName + " " + Hex("long") +
                  "\n"
                  "stream \xc3\x84rger \xc3\xa9t\xc3\xa9/empty \n");
}

// 100 MiB in one stream: with 512-byte sectors, the allocation-table sectors
// that the header lists itself cover about 7 MiB; beyond, the file needs its
// further list of them.
TEST(CompoundFile, AStreamOf100MiB) {
    ScratchDirectory directory;
    const WideString path = directory / KTW("large.stg");
    constexpr unsigned kBlock = 1 << 20, kBlocks = 100;
    std::vector<ULONG> block(kBlock / sizeof(ULONG));
    {
        StorageRef root(new_Storage(path.c_str(), 0));
        kt::test::Ref<IXStream> stream(root->CreateStream("large"));
        for (ULONG n = 0; n < kBlocks; ++n) {
            std::fill(block.begin(), block.end(), n);
            stream->Write(block.data(), kBlock);
        }
    }
    StorageRef root(open_Storage(path.c_str(), 1));
    kt::test::Ref<IXStream> stream(root->OpenStream("large"));
    ASSERT_EQ(stream->GetLength(), kBlocks * kBlock);
    for (ULONG n = 0; n < kBlocks; ++n) {
        ASSERT_EQ(stream->Read(block.data(), kBlock), kBlock);
        ASSERT_EQ(block.front(), n);
        ASSERT_EQ(block.back(), n);
    }
}

// olefile's writer keeps a stream's size; what it puts in a file the library
// made, the library reads.
TEST(CompoundFile, ReadsWhatAnIndependentWriterWrote) {
    ScratchDirectory directory;
    const WideString path = directory / KTW("rewritten.stg");
    WriteText(StorageRef(StorageRef(new_Storage(path.c_str(), 0))->CreateStorage("inner")).get(),
              "text", "written by kticore");
    const std::string other = "written by olefile";
    EXPECT_EQ(kt::test::IndependentTree(path, "inner/text=" + Hex(other)),
              "storage inner\nstream inner/text " + Hex(other) + "\n");
    EXPECT_EQ(
        ReadText(StorageRef(StorageRef(open_Storage(path.c_str(), 1))->OpenStorage("inner")).get(),
                 "text"),
        other);
}

// Cases that fail, each on a fresh file holding the stream "stream" and the
// storage "storage". The cases on the file itself get it after the root has
// let it go, and a null root.
struct Refusal {
    const char* name;
    bool onClosedFile;
    void (*act)(IXStorage* root, const WideString& path);
    FileFailure expected;  // a name beginning "=path" stands for the file's path
};

void CutShort(const WideString& path) {
    std::filesystem::resize_file(std::filesystem::path(path), 700);
}

// Fills the first sector of the allocation table, which the header names at
// offset 0x4C, with sector numbers far past the end of the file.
void DamageFirstFatSector(const WideString& path) {
    std::fstream file(std::filesystem::path(path), std::ios::in | std::ios::out | std::ios::binary);
    std::uint32_t fatSector = 0;
    file.seekg(0x4C);
    file.read(reinterpret_cast<char*>(&fatSector), sizeof fatSector);
    const std::string garbage(512, '\x7e');
    file.seekp((fatSector + 1) * 512);
    file.write(garbage.data(), garbage.size());
}

const Refusal kRefusals[] = {
    {"MissingFileForWriting",
     true,
     [](IXStorage*, const WideString& path) {
         const WideString missing = path + KTW(".missing");
         try {
             open_Storage(missing.c_str(), 0);
         } catch (const CXFileException&) {
             EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(missing)));
             throw;
         }
     },
     {XE_FILE_NOT_FOUND, XFILEOP_OPEN, KTW("=path.missing")}},
    {"NotACompoundFile",
     true,
     [](IXStorage*, const WideString& path) {
         kt::test::WriteContent(path, std::string(4096, 'x'));
         open_Storage(path.c_str(), 1);
     },
     {XE_BAD_DATA, XFILEOP_OPEN, KTW("=path")}},
    {"CutShort",
     true,
     [](IXStorage*, const WideString& path) {
         CutShort(path);
         open_Storage(path.c_str(), 0);
     },
     {XE_IO_FAULT, XFILEOP_OPEN, KTW("=path")}},
    {"FileOpenTwice",
     false,
     [](IXStorage*, const WideString& path) { open_Storage(path.c_str(), 1); },
     {XE_SHARING, XFILEOP_OPEN, KTW("=path")}},
    {"MissingElement",
     false,
     [](IXStorage* root, const WideString&) { root->OpenStorage("missing"); },
     {XE_FILE_NOT_FOUND, XFILEOP_OPEN, KTW("missing")}},
    {"NameTooLong",
     false,
     [](IXStorage* root, const WideString&) { root->CreateStorage((kLongestName + "n").c_str()); },
     {XE_PATH_NOT_FOUND, XFILEOP_OPEN, WideString(32, 'n')}},
    {"DamagedSectorChain",
     true,
     [](IXStorage*, const WideString& path) {
         DamageFirstFatSector(path);
         StorageRef damaged(open_Storage(path.c_str(), 1));
         kt::test::Ref<IXStream> stream(damaged->OpenStream("stream"));
         if (stream != nullptr)
             ReadText(damaged.get(), "stream");
     },
     {XE_IO_FAULT, XFILEOP_OPEN, KTW("=path")}},
    {"StorageOpenTwice",
     false,
     [](IXStorage* root, const WideString&) {
         StorageRef first(root->OpenStorage("storage"));
         root->OpenStorage("storage");
     },
     {XE_SHARING, XFILEOP_OPEN, KTW("storage")}},
    {"DestroyMissing",
     false,
     [](IXStorage* root, const WideString&) { root->DestroyStream("missing"); },
     {XE_FILE_NOT_FOUND, XFILEOP_DESTROY_ELEMENT, {}}},
    {"CreateWhileReadOnly",
     true,
     [](IXStorage*, const WideString& path) {
         StorageRef(open_Storage(path.c_str(), 1))->CreateStorage("new");
     },
     {XE_SHARING, XFILEOP_OPEN, KTW("new")}},
};

class Refused : public ::testing::TestWithParam<Refusal> {};

TEST_P(Refused, WithTheMappedFailure) {
    ScratchDirectory directory;
    const WideString path = directory / KTW("refusing.stg");
    StorageRef root(new_Storage(path.c_str(), 0));
    WriteText(root.get(), "stream", "content");
    StorageRef(root->CreateStorage("storage"));
    if (GetParam().onClosedFile)
        root.reset();
    FileFailure expected = GetParam().expected;
    if (expected.name.rfind(KTW("=path"), 0) == 0)
        expected.name = path + expected.name.substr(5);
    EXPECT_EQ(FileFailureOf([&] { GetParam().act(root.get(), path); }), expected);
}

struct RefusalName {
    std::string operator()(const ::testing::TestParamInfo<Refusal>& info) const {
        return info.param.name;
    }
};

INSTANTIATE_TEST_SUITE_P(Storage, Refused, ::testing::ValuesIn(kRefusals), RefusalName());

TEST(CompoundFile, AStreamOpensOnceAtATimeAndRefusedNamesGiveNull) {
    StorageRef root(new_Storage(nullptr, 0));
    WriteText(root.get(), "stream", "x");
    kt::test::Ref<IXStream> first(root->OpenStream("stream"));
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(root->OpenStream("stream"), nullptr);
    EXPECT_EQ(root->CreateStream((kLongestName + "n").c_str()), nullptr);
    EXPECT_EQ(root->OpenStream("missing"), nullptr);
}

}  // namespace
