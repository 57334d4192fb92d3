// Memory names: the host's block read in place, writes ignored, and what the
// name functions do with such names.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "kticore/files/FileUtilities.h"
#include "tests/support/Counted.h"
#include "tests/support/LowBlock.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using kt::test::FileFailureOf;
using kt::test::Ref;
using kt::test::WideString;

WideString Number(std::uintptr_t value) {
    const std::string digits = std::to_string(value);
    return WideString(digits.begin(), digits.end());
}

class MemoryFile : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(block.data, nullptr);
        std::memcpy(block.data, "first line\nsecond line\n", 24);  // 20 bytes named
    }

    WideString Named(const WideString& prefix, const WideString& between, const WideString& tail) {
        return prefix + Number(reinterpret_cast<std::uintptr_t>(block.data)) + between + KTW("20") +
               tail;
    }

    std::string Content(const WideString& name) {
        Ref<IXFile> file(Fio_Open(name.c_str(), 0));
        std::string content(file->GetLength(), '\0');
        file->Read(content.data(), static_cast<DWORD>(content.size()));
        return content;
    }

    kt::test::LowBlock block{4096};
};

TEST_F(MemoryFile, SpellingsOfOneNameReachOneBlock) {
    const std::string expected(reinterpret_cast<char*>(block.data), 20);
    EXPECT_EQ(Content(Named(KTW("fmem::"), KTW(","), KTW(""))), expected);
    EXPECT_EQ(Content(Named(KTW("FMEM::"), KTW("."), KTW(""))), expected);
    EXPECT_EQ(Content(Named(KTW("fmem::,"), KTW(",,"), KTW(",99"))), expected);
    // White space before a number is skipped, all of it, as the runtime does.
    EXPECT_EQ(Content(Named(KTW("fmem::\n\x3000"), KTW(",\r\v\x00A0+"), KTW(""))), expected);
}

TEST_F(MemoryFile, ReadsInPlaceAndSeeksWithinTheBlock) {
    const WideString name = Named(KTW("fmem::"), KTW(","), KTW(""));
    Ref<IXFile> file(Fio_Open(name.c_str(), FIO_WRITE));
    EXPECT_EQ(kt::test::Wide(file->GetName()), name);
    char line[32];
    EXPECT_EQ(file->ReadLine(line, 30), 10);
    EXPECT_STREQ(line, "first line\n");
    EXPECT_EQ(file->Seek(20, 0), 20u);
    EXPECT_EQ(file->Read(line, 1), 0u);
    const auto failure = FileFailureOf([&] { file->Seek(21, 0); });
    EXPECT_EQ(failure.code, XE_BAD_SEEK);
    EXPECT_EQ(failure.operation, XFILEOP_READ);
    EXPECT_EQ(FileFailureOf([&] { file->ReadByte(); }).code, XE_END_OF_FILE);
    EXPECT_EQ(file->Flush(), 1);
}

TEST_F(MemoryFile, OutputIsAcceptedAndChangesNothing) {
    const WideString name = Named(KTW("fmem::"), KTW(","), KTW(""));
    Ref<IXOutFile> out(Fio_OpenOut(name.c_str(), 0));
    out->WriteString("overwritten?");
    out->Write("x", 1);
    out->Commit();
    EXPECT_EQ(out->GetLength(), 20u);
    EXPECT_EQ(out->GetPosition(), 0u);
    EXPECT_EQ(std::memcmp(block.data, "first line", 10), 0);
}

TEST_F(MemoryFile, NameFunctionsTreatTheBlockAsAFile) {
    const WideString name = Named(KTW("fmem::"), KTW(","), KTW(""));
    EXPECT_EQ(Fio_IsMemFile(name.c_str()), 1);
    EXPECT_EQ(Fio_IsMemFile(KTW("fmem:")), 0);
    EXPECT_EQ(Fio_IsMemFile(nullptr), 0);
    EXPECT_EQ(Fio_IsFileExist(KTW("fmem::1,2")), 1);
    EXPECT_EQ(Fio_IsWritableFile(name.c_str()), 1);
    FioFileInfo info;
    std::memset(&info, 0xAB, sizeof info);
    Fio_GetFileInfo(name.c_str(), &info);
    EXPECT_EQ(info.size, 20u);
    EXPECT_EQ(info.year, 0xABABABABu);  // the other fields are left alone
    EXPECT_EQ(std::memcmp(block.data, "first line", 10), 0);
}

TEST(MemoryFileNames, SizesOutsideThirtyTwoBitsAreHeldAtTheLimit) {
    // Found by fuzzing: the file's length and the name's size told apart.
    const struct {
        const KTWCHAR* name;
        DWORD size;
    } cases[] = {{KTW("fmem::1000,99999999999"), 0x7FFFFFFF}, {KTW("fmem::1000,-5"), 0}};
    for (const auto& c : cases) {
        FioFileInfo info{};
        Fio_GetFileInfo(c.name, &info);
        EXPECT_EQ(info.size, c.size);
        Ref<IXFile> file(Fio_Open(c.name, 0));
        EXPECT_EQ(file->GetLength(), c.size);
    }
}

TEST(MemoryFileFaults, AnUnreadableBlockIsAnIOFault) {
    Ref<IXFile> file(Fio_Open(KTW("fmem::4096,16"), 0));
    char buffer[16];
    const auto failure = FileFailureOf([&] { file->Read(buffer, 16); });
    EXPECT_EQ(failure.code, XE_IO_FAULT);
    EXPECT_EQ(failure.operation, XFILEOP_READ);
}

}  // namespace
