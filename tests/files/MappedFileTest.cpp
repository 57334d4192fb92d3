// Local files through their mapped view: the view moving under reads and
// writes, the length and the size on disk, seeking, lines, share modes, and
// the failures of bad names. The same tests run on both builds.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "files/MappedFile.h"
#include "kticore/files/File.h"
#include "platform/FileSystem.h"
#include "tests/support/Counted.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/TestHelper.h"

namespace {

using kt::test::ContentOf;
using kt::test::FileFailureOf;
using kt::test::Ref;
using kt::test::WideString;
using kt::test::WriteContent;

constexpr DWORD kView = 131072;  // twice the allocation granularity
constexpr DWORD kReadWindow = kt::kReadWindowBytes;  // of a sequential reader
// Exit codes of the test helper's cuts.
constexpr int kRefused = 3;
constexpr int kNotUnderWine = 4;

std::string Pattern(size_t size) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 31 + i / 251);
    return bytes;
}

DWORD SizeOnDisk(const WideString& name) {
    FioFileInfo info;
    Fio_GetFileInfo(name.c_str(), &info);
    return info.size;
}

class MappedFile : public ::testing::Test {
protected:
    kt::test::ScratchDirectory scratch;
    WideString name = scratch / KTW("data.bin");
};

TEST_F(MappedFile, AnEmptyFileOpensForReadingWithNothingMapped) {
    WriteContent(name, "");
    Ref<IXFile> file(Fio_Open(name.c_str(), 0));
    char byte;
    EXPECT_EQ(file->Read(&byte, 1), 0u);
    EXPECT_EQ(file->GetLength(), 0u);
    EXPECT_EQ(file->Seek(0, 0), 0u);
    EXPECT_EQ(file->Flush(), 1);
    const auto seek = FileFailureOf([&] { file->Seek(1, 0); });
    EXPECT_EQ(seek.code, XE_BAD_SEEK);
    EXPECT_EQ(seek.operation, XFILEOP_READ);
    const auto read = FileFailureOf([&] { file->ReadByte(); });
    EXPECT_EQ(read.code, XE_END_OF_FILE);
    EXPECT_EQ(read.operation, XFILEOP_READ);
    EXPECT_EQ(read.name, name);
}

TEST_F(MappedFile, AWriterGrowsByViewsOnDiskAndIsCutToItsLength) {
    const std::string bytes = Pattern(300000);
    IXFile* file = Fio_Open(name.c_str(), FIO_WRITE);
    file->Write(bytes.data(), static_cast<DWORD>(bytes.size()));
    EXPECT_EQ(file->GetLength(), 300000u);
    EXPECT_EQ(SizeOnDisk(name), 3 * kView);
    EXPECT_EQ(file->Flush(), 1);
    // Back to earlier views, whose mappings are smaller than the file now.
    file->Seek(1, 0);
    file->WriteByte('X');
    file->Seek(200000, 0);
    file->WriteByte('Y');
    EXPECT_EQ(file->GetLength(), 300000u);
    file->Release();
    EXPECT_EQ(SizeOnDisk(name), 300000u);
    std::string expected = bytes;
    expected[1] = 'X';
    expected[200000] = 'Y';
    EXPECT_EQ(ContentOf(name), expected);
}

// A sequential reader moves the large window, a random one the small view.
TEST_F(MappedFile, OneReadSpansTwoViews) {
    for (const auto& [flags, view] : {std::pair<int, DWORD>{0, kReadWindow}, {FIO_RANDOM, kView}}) {
        SCOPED_TRACE(flags);
        const std::string bytes = Pattern(view + 150000);
        WriteContent(name, bytes);
        Ref<IXFile> file(Fio_Open(name.c_str(), flags));
        std::string part(250000, '\0');
        file->Seek(static_cast<LONG>(view - 100000), 0);
        EXPECT_EQ(file->Read(part.data(), 250000), 250000u);
        EXPECT_EQ(part, bytes.substr(view - 100000, 250000));
        EXPECT_EQ(file->GetPosition(), view + 150000);
        // A read that begins exactly at the end of the view just read to its
        // end: the next view comes in.
        file->Seek(static_cast<LONG>(view - 1000), 0);
        EXPECT_EQ(file->Read(part.data(), 1000), 1000u);
        char ten[10];
        EXPECT_EQ(file->Read(ten, 10), 10u);
        EXPECT_EQ(std::string(ten, 10), bytes.substr(view, 10));
        EXPECT_EQ(file->GetPosition(), view + 10);
        // A value across the boundary of two views.
        file->Seek(static_cast<LONG>(view - 2), 0);
        const DWORD straddling = file->ReadDWord();
        EXPECT_EQ(std::memcmp(&straddling, bytes.data() + view - 2, 4), 0);
    }
}

TEST_F(MappedFile, ReadsStopAtTheLength) {
    WriteContent(name, "0123456789");
    Ref<IXFile> file(Fio_Open(name.c_str(), 0));
    char buffer[20];
    file->Seek(6, 0);
    EXPECT_EQ(file->Read(buffer, 4), 4u);
    EXPECT_EQ(file->Read(buffer, 4), 0u);
    file->Seek(8, 0);
    EXPECT_EQ(file->Read(buffer, 20), 2u);
    file->Seek(8, 0);
    const auto failure = FileFailureOf([&] { file->ReadDWord(); });
    EXPECT_EQ(failure.code, XE_END_OF_FILE);
    EXPECT_EQ(file->GetPosition(), 10u);  // the bytes that were there are consumed
}

TEST_F(MappedFile, SeekingKeepsPositionsBetweenZeroAndWhatTheAccessAllows) {
    WriteContent(name, "0123456789");
    Ref<IXFile> reader(Fio_Open(name.c_str(), 0));
    EXPECT_EQ(reader->Seek(-1, 0), 0u);
    EXPECT_EQ(reader->Seek(static_cast<LONG>(0x80000000u), 0), 0u);
    EXPECT_EQ(reader->Seek(-3, 2), 7u);
    EXPECT_EQ(reader->Seek(10, 0), 10u);
    reader->Seek(4, 0);
    EXPECT_EQ(FileFailureOf([&] { reader->Seek(7, 1); }).code, XE_BAD_SEEK);
    EXPECT_EQ(reader->GetPosition(), 4u);
    EXPECT_EQ(FileFailureOf([&] { reader->Seek(0, 3); }).code, XE_BAD_SEEK);
}

TEST_F(MappedFile, AWriteBehindTheLengthLeavesAZeroGap) {
    IXFile* file = Fio_Open(name.c_str(), FIO_WRITE);
    file->WriteString("ab");
    EXPECT_EQ(file->Seek(200000, 0), 200000u);
    EXPECT_EQ(file->GetLength(), 3u);  // a seek writes nothing
    file->WriteByte('z');
    EXPECT_EQ(file->GetLength(), 200001u);
    EXPECT_EQ(SizeOnDisk(name), 2 * kView);  // the view at 131,072 ends the mapping
    file->Release();
    const std::string content = ContentOf(name);
    ASSERT_EQ(content.size(), 200001u);
    EXPECT_EQ(content.substr(0, 3), std::string("ab\0", 3));
    EXPECT_EQ(content.find_first_not_of('\0', 3), 200000u);
}

TEST_F(MappedFile, WritingStartsEmptyUnlessKept) {
    WriteContent(name, "old content");
    Ref<IXFile> fresh(Fio_Open(name.c_str(), FIO_WRITE));
    EXPECT_EQ(fresh->GetLength(), 0u);
    fresh.reset();
    EXPECT_EQ(ContentOf(name), "");

    WriteContent(name, "old content");
    IXFile* kept = Fio_Open(name.c_str(), FIO_WRITE | FIO_KEEP);
    EXPECT_EQ(kept->GetLength(), 11u);
    EXPECT_EQ(kept->GetPosition(), 0u);
    kept->Write("new", 3);
    kept->Release();
    EXPECT_EQ(ContentOf(name), "new content");
}

TEST_F(MappedFile, ANullNameMakesATemporaryFileThatGoesAtTheLastRelease) {
    IXFile* file = Fio_Open(nullptr, FIO_WRITE | FIO_TEMPORARY);
    const WideString temporary = kt::test::Wide(file->GetName());
    EXPECT_NE(temporary.find(KTW("KTP")), WideString::npos);
    file->WriteString("scratch");
    EXPECT_EQ(Fio_IsFileExist(temporary.c_str()), 1);
    file->Release();
    EXPECT_EQ(Fio_IsFileExist(temporary.c_str()), 0);
}

TEST_F(MappedFile, LinesKeepTheirLineFeedWhereThereIsRoom) {
    char line[11];
    WriteContent(name, "ab\ncd");
    {
        Ref<IXFile> file(Fio_Open(name.c_str(), 0));
        EXPECT_EQ(file->ReadLine(line, 10), 2);
        EXPECT_STREQ(line, "ab\n");
        EXPECT_EQ(file->ReadLine(line, 10), 2);
        EXPECT_STREQ(line, "cd");
        EXPECT_EQ(file->ReadLine(line, 10), 0);
        EXPECT_STREQ(line, "");
    }

    WriteContent(name, "abc\nxyz\r\n");
    Ref<IXFile> tight(Fio_Open(name.c_str(), 0));
    EXPECT_EQ(tight->ReadLine(line, 4), 3);  // the line feed gives way to the terminator
    EXPECT_STREQ(line, "abc");
    EXPECT_EQ(tight->ReadLine(line, 10), 4);
    EXPECT_STREQ(line, "xyz\r\n");
}

TEST_F(MappedFile, LinesOfEveryLengthAroundTheSixteenByteStepComeBackWhole) {
    constexpr int kLongest = 40;
    const auto lineOf = [](int length) {
        return std::string(length, static_cast<char>('a' + length % 26));
    };
    std::string text;
    for (int length = 0; length <= kLongest; ++length)
        text += lineOf(length) + "\n";
    WriteContent(name, text + "tail");
    Ref<IXFile> file(Fio_Open(name.c_str(), 0));
    char line[4097];
    for (int length = 0; length <= kLongest; ++length) {
        std::memset(line, '#', sizeof line);
        ASSERT_EQ(file->ReadLine(line, 4096), length);
        EXPECT_EQ(std::string(line), lineOf(length) + "\n");
        EXPECT_EQ(line[length + 2], '#') << "a byte behind the line was written";
    }
    EXPECT_EQ(file->ReadLine(line, 4096), 4);
    EXPECT_STREQ(line, "tail");
    // Cut at maxChars, inside and at the end of a 16-byte step.
    for (const int maxChars : {15, 16, 17}) {
        file->Seek(static_cast<LONG>(text.find(lineOf(kLongest))), 0);
        ASSERT_EQ(file->ReadLine(line, maxChars), maxChars);
        EXPECT_EQ(std::string(line), lineOf(kLongest).substr(0, maxChars));
        EXPECT_EQ(file->ReadLine(line, 4096), kLongest - maxChars);
    }
}

TEST_F(MappedFile, WideLinesFollowTheSameRule) {
    IXFile* file = Fio_Open(name.c_str(), FIO_WRITE);
    file->Write(KTW("ab\ncd\n"), 6 * sizeof(KTWCHAR));
    file->Release();
    Ref<IXFile> reader(Fio_Open(name.c_str(), 0));
    KTWCHAR line[8];
    EXPECT_EQ(reader->ReadLineW(line, 3), 2);  // no room behind: the terminator takes its place
    EXPECT_EQ(kt::test::Wide(line), KTW("ab"));
    EXPECT_EQ(reader->ReadLineW(line, 7), 2);
    EXPECT_EQ(kt::test::Wide(line), KTW("cd\n"));
}

TEST_F(MappedFile, TypedValuesRoundTrip) {
    IXFile* file = Fio_Open(name.c_str(), FIO_WRITE);
    file->WriteByte(0x11);
    file->WriteWord(0x2233);
    file->WriteDWord(0x44556677);
    file->WriteDouble(-0.5);
    file->WriteStringW(KTW("w"));
    file->Release();
    EXPECT_EQ(ContentOf(name),
              std::string("\x11\x33\x22\x77\x66\x55\x44\0\0\0\0\0\0\xE0\xBF" "w\0\0\0", 19));
    Ref<IXFile> reader(Fio_Open(name.c_str(), FIO_RANDOM));
    EXPECT_EQ(reader->ReadByte(), 0x11);
    EXPECT_EQ(reader->ReadWord(), 0x2233);
    EXPECT_EQ(reader->ReadDWord(), 0x44556677u);
    EXPECT_EQ(reader->ReadDouble(), -0.5);
}

TEST_F(MappedFile, AWriterExcludesEveryOtherOpenAndReadersShare) {
    WriteContent(name, "shared");
    {
        Ref<IXFile> reader(Fio_Open(name.c_str(), 0));
        Ref<IXFile> second(Fio_Open(name.c_str(), 0));
        const auto writer = FileFailureOf([&] { Fio_Open(name.c_str(), FIO_WRITE | FIO_KEEP); });
        EXPECT_EQ(writer.code, XE_SHARING);
        EXPECT_EQ(writer.operation, XFILEOP_WRITE);
    }
    Ref<IXFile> writer(Fio_Open(name.c_str(), FIO_WRITE | FIO_KEEP));
    const auto reader = FileFailureOf([&] { Fio_Open(name.c_str(), 0); });
    EXPECT_EQ(reader.code, XE_SHARING);
    EXPECT_EQ(reader.operation, XFILEOP_READ);
}

// A fault in the view is caught at the copy and thrown on with the file's
// access as the operation.
void ExpectIoFault(IXFile* file, const std::function<void()>& access, DWORD operation,
                   const char* what) {
    const DWORD position = file->GetPosition();
    const auto failure = FileFailureOf(access);
    EXPECT_EQ(failure.code, XE_IO_FAULT) << what;
    EXPECT_EQ(failure.operation, operation) << what;
    EXPECT_EQ(failure.name, kt::test::Wide(file->GetName())) << what;
    EXPECT_EQ(file->GetPosition(), position) << what;
}

TEST_F(MappedFile, WritingIntoAFileOpenForReadingIsAnIoFault) {
    WriteContent(name, "read only");
    {
        Ref<IXFile> file(Fio_Open(name.c_str(), 0));
        ExpectIoFault(file.get(), [&] { file->WriteByte('x'); }, XFILEOP_READ, "WriteByte");
        ExpectIoFault(file.get(), [&] { file->Write("xyz", 3); }, XFILEOP_READ, "Write");
        file->Write("", 0);  // nothing to write is no failure
        EXPECT_EQ(file->ReadByte(), 'r');
    }
    EXPECT_EQ(ContentOf(name), "read only");
    WriteContent(name, "");  // nothing mapped at all
    Ref<IXFile> empty(Fio_Open(name.c_str(), 0));
    ExpectIoFault(empty.get(), [&] { empty->WriteDWord(1); }, XFILEOP_READ, "into an empty file");
}

TEST_F(MappedFile, AFileCutShortUnderAReaderIsAnIoFault) {
    const std::string bytes = Pattern(kReadWindow + kView);
    WriteContent(name, bytes);
    Ref<IXFile> file(Fio_Open(name.c_str(), 0));
    EXPECT_EQ(file->ReadByte(), static_cast<BYTE>(bytes[0]));
    int cut = kt::test::RunTestHelper("cut", name, KTW("10"));
    if (cut == kRefused) {
        // Windows keeps a mapped file whole: the reader reads on.
        file->Seek(100000, 0);
        EXPECT_EQ(file->ReadByte(), static_cast<BYTE>(bytes[100000]));
        cut = kt::test::RunTestHelper("cut-beneath", name, KTW("10"));
        if (cut == kNotUnderWine)
            GTEST_SKIP() << "only Wine lets a process cut a mapped file";
    }
    ASSERT_EQ(cut, 0);
    char piece[1000];
    const std::vector<std::pair<const char*, std::function<void()>>> reads = {
        {"ReadByte", [&] { file->ReadByte(); }},
        {"ReadWord", [&] { file->ReadWord(); }},
        {"ReadDWord", [&] { file->ReadDWord(); }},
        {"ReadDouble", [&] { file->ReadDouble(); }},
        {"Read", [&] { file->Read(piece, sizeof piece); }},
        {"ReadLine", [&] { file->ReadLine(piece, 900); }},
        {"ReadLineW", [&] { file->ReadLineW(reinterpret_cast<KTWCHAR*>(piece), 400); }},
    };
    for (const DWORD at : {DWORD{100000}, kReadWindow + 8}) {  // in the window, then in the next
        for (const auto& [what, read] : reads) {
            file->Seek(static_cast<LONG>(at), 0);
            ExpectIoFault(file.get(), read, XFILEOP_READ, what);
        }
    }
}

TEST_F(MappedFile, BadNamesFailWithTheirCodes) {
    const auto expect = [](const WideString& bad, int flags, DWORD code, DWORD operation) {
        const auto failure = FileFailureOf([&] { Fio_Open(bad.c_str(), flags); });
        EXPECT_EQ(failure.code, code) << "flags " << flags << ", a name of " << bad.size();
        EXPECT_EQ(failure.operation, operation);
    };
    expect(KTW(""), 0, XE_PATH_NOT_FOUND, XFILEOP_READ);
    expect(scratch / WideString(511 - scratch.Path().size() - 1, 'n'), FIO_WRITE, XE_PATH_NOT_FOUND,
           XFILEOP_WRITE);
    expect(scratch / WideString(512 - scratch.Path().size() - 1, 'n'), 0, XE_PATH_NOT_FOUND,
           XFILEOP_READ);
    expect(scratch / KTW("missing.bin"), 0, XE_FILE_NOT_FOUND, XFILEOP_READ);
    expect(scratch / KTW("no/such/directory.bin"), FIO_WRITE, XE_PATH_NOT_FOUND, XFILEOP_WRITE);
    expect(scratch.Path(), 0, XE_ACCESS_DENIED, XFILEOP_READ);
    WriteContent(name, "read-only");
    ASSERT_TRUE(kt::sys::SetReadOnly(name.c_str(), true));
    expect(name, FIO_WRITE | FIO_KEEP, XE_ACCESS_DENIED, XFILEOP_WRITE);
    EXPECT_EQ(ContentOf(name), "read-only");
    kt::sys::SetReadOnly(name.c_str(), false);
    EXPECT_EQ(scratch.Entries().size(), 1u);  // nothing was left behind
}

}  // namespace
