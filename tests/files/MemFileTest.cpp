// The growing memory file: its length is its block, which grows in steps.
#include <gtest/gtest.h>

#include <string>

#include "files/MemFile.h"
#include "tests/support/Counted.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using kt::test::FileFailureOf;
using kt::test::Ref;

constexpr DWORD kStep = 1024;

std::string ReadAll(IXFile* file) {
    file->Seek(0, 0);
    std::string content(file->GetLength(), '\0');
    EXPECT_EQ(file->Read(content.data(), static_cast<DWORD>(content.size())), content.size());
    return content;
}

TEST(MemFile, GrowsInWholeStepsAndPadsWithZeros) {
    Ref<IXFile> file(kt_NewMemFile(kStep));
    EXPECT_EQ(file->GetLength(), 0u);
    file->Write("0123456789", 10);
    EXPECT_EQ(file->GetLength(), kStep);
    EXPECT_EQ(file->GetPosition(), 10u);

    EXPECT_EQ(file->Seek(1020, 0), 1020u);
    file->Write("abcdefghij", 10);
    EXPECT_EQ(file->GetLength(), 2 * kStep);

    std::string expected(2 * kStep, '\0');
    expected.replace(0, 10, "0123456789");
    expected.replace(1020, 10, "abcdefghij");
    EXPECT_EQ(ReadAll(file.get()), expected);
}

TEST(MemFile, SeeksAreHeldInsideTheBlock) {
    Ref<IXFile> file(kt_NewMemFile(kStep));
    file->WriteDWord(7);
    EXPECT_EQ(file->Seek(-5, 0), 0u);
    EXPECT_EQ(file->Seek(10000, 0), kStep);
    EXPECT_EQ(file->Seek(-4, 2), kStep - 4);
    EXPECT_EQ(file->Seek(-10, 1), kStep - 14);
    const auto failure = FileFailureOf([&] { file->Seek(0, 3); });
    EXPECT_EQ(failure.code, static_cast<DWORD>(XE_BAD_ARGUMENT));
    EXPECT_EQ(failure.operation, static_cast<DWORD>(XFILEOP_SEEK));
    EXPECT_EQ(failure.name, kt::test::WideString(KTW("MemFile")));
}

// A typed value cut short holds the bytes that came; only a read of nothing
// fails, and as the end of a text buffer, not as a file failure.
TEST(MemFile, ReadsStopAtTheEndAndTypedReadsFailOnlyThere) {
    Ref<IXFile> file(kt_NewMemFile(7));
    file->WriteDWord(0x01020304);
    file->WriteWord(0x0506);
    file->Seek(0, 0);
    EXPECT_EQ(file->ReadDWord(), 0x01020304u);
    EXPECT_EQ(file->ReadDWord(), 0x0506u);  // the word and one byte of padding
    try {
        file->ReadByte();
        ADD_FAILURE() << "a read at the end gave a byte";
    } catch (const CXException& failure) {
        EXPECT_TRUE(typeid(failure) == typeid(CXException)) << typeid(failure).name();
        EXPECT_EQ(failure.code, static_cast<DWORD>(XE_END_OF_FILE));
    }
    char byte = 0;
    EXPECT_EQ(file->Read(&byte, 1), 0u);
    file->Seek(0, 0);
    EXPECT_EQ(file->Read(nullptr, 4), 0u);
    EXPECT_EQ(file->GetPosition(), 0u);
}

TEST(MemFile, EmptyWritesChangeNothing) {
    Ref<IXFile> file(kt_NewMemFile(16));
    file->Write(nullptr, 5);
    file->Write("x", 0);
    EXPECT_EQ(file->GetLength(), 0u);
}

TEST(MemFile, RefusesAStepOfNothingAndABlockBeyondThirtyOneBits) {
    try {
        kt_NewMemFile(0);
        ADD_FAILURE() << "a step of 0 was taken";
    } catch (const CXException& failure) {
        EXPECT_EQ(failure.code, static_cast<DWORD>(XE_BAD_ARGUMENT));
    }
    Ref<IXFile> file(kt_NewMemFile(0x80000000));
    EXPECT_THROW(file->WriteByte(1), CXMemException);
    EXPECT_EQ(file->GetLength(), 0u);
    EXPECT_EQ(file->QueryInterface(typeid(IXFile), nullptr), 1);
}

}  // namespace
