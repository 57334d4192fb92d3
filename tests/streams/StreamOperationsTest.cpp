// What every seekable stream does alike: typed values, seeking, the length,
// text without a length in front, and the failures of a bad origin and of
// reading past the end.
#include <gtest/gtest.h>

#include "kticore/core/Exception.h"
#include "tests/support/Streams.h"
#include "tests/support/WideText.h"

namespace {

using kt::test::AllBytes;
using kt::test::Bytes;
using kt::test::Ref;
using kt::test::StreamKind;

class StreamOperations : public ::testing::TestWithParam<StreamKind> {
protected:
    Ref<IXStream> Holding(const Bytes& bytes) { return kt::test::StreamOf(GetParam(), bytes); }
};

TEST_P(StreamOperations, TypedValuesAreLittleEndianWithoutPaddingAndTextHasNoLength) {
    Ref<IXStream> stream(GetParam().make());
    stream->WriteByte(0x01);
    stream->WriteWord(0x0302);
    stream->WriteDWord(0x07060504);
    stream->WriteDouble(-2.0);
    stream->WriteString("ab");
    stream->WriteStringW(KTW("c"));
    EXPECT_EQ(AllBytes(stream.get()),
              (Bytes{1, 2, 3, 4, 5, 6, 7, 0, 0, 0, 0, 0, 0, 0, 0xC0, 'a', 'b', 0, 'c', 0, 0, 0}));
    stream->Seek(0, 0);
    EXPECT_EQ(stream->ReadByte(), 0x01);
    EXPECT_EQ(stream->ReadWord(), 0x0302);
    EXPECT_EQ(stream->ReadDWord(), 0x07060504u);
    EXPECT_EQ(stream->ReadDouble(), -2.0);
}

TEST_P(StreamOperations, APartialValueIsReadAndNothingLeftIsEndOfFile) {
    Ref<IXStream> stream = Holding({0x34, 0x12});
    EXPECT_EQ(stream->ReadDWord(), 0x1234u);
    EXPECT_THROW(stream->ReadDWord(), CXEofException);
    EXPECT_THROW(stream->ReadByte(), CXEofException);
    EXPECT_THROW(stream->ReadDouble(), CXEofException);
    try {
        stream->ReadWord();
        ADD_FAILURE() << "a read of nothing returned";
    } catch (const CXEofException& failure) {
        EXPECT_EQ(failure.code, XE_END_OF_FILE);
    }
}

TEST_P(StreamOperations, SeekFromEachOriginAndLengthKeepsThePosition) {
    Ref<IXStream> stream = Holding(Bytes(10, 0x55));
    EXPECT_EQ(stream->Seek(4, 0), 4u);
    EXPECT_EQ(stream->Seek(2, 1), 6u);
    EXPECT_EQ(stream->Seek(-3, 2), 7u);
    EXPECT_EQ(stream->GetLength(), 10u);
    EXPECT_EQ(stream->GetPosition(), 7u);
    stream->Seek(4, 0);
    stream->WriteWord(0xAAAA);  // overwriting inside changes no length
    EXPECT_EQ(stream->GetLength(), 10u);
}

TEST_P(StreamOperations, ABadOriginIsABadArgumentOfASeek) {
    Ref<IXStream> stream = Holding({1, 2, 3});
    stream->Seek(1, 0);
    kt::test::ExpectBadOriginRefused(stream.get());
}

TEST_P(StreamOperations, ReadAtTheEndReturnsZeroAndReadLineThrows) {
    Ref<IXStream> stream = Holding({'a', 'b'});
    char buffer[8];
    EXPECT_EQ(stream->Read(buffer, 8), 2u);
    EXPECT_EQ(stream->Read(buffer, 8), 0u);
    EXPECT_THROW(stream->ReadLine(buffer, 5), CXEofException);
    // A part of a line before the end is lost to the same exception.
    Ref<IXStream> partial = Holding({'a', 'b'});
    EXPECT_THROW(partial->ReadLine(buffer, 5), CXEofException);
}

TEST_P(StreamOperations, ReadLineKeepsBothLineEndCharactersAndStopsAtAZeroByte) {
    Ref<IXStream> stream = Holding({'a', 'b', '\r', '\n', 'c', '\n', 'd', 0, 'e'});
    char line[100];
    EXPECT_EQ(stream->ReadLine(line, 100), 4);
    EXPECT_STREQ(line, "ab\r\n");
    EXPECT_EQ(stream->ReadLine(line, 100), 2);
    EXPECT_STREQ(line, "c\n");
    EXPECT_EQ(stream->ReadLine(line, 100), 2);  // the zero byte is counted
    EXPECT_STREQ(line, "d");
    EXPECT_EQ(stream->GetPosition(), 8u);
    Ref<IXStream> wide = Holding({'x', 0, '\n', 0, 'y', 0, '\n', 0});
    KTWCHAR units[10];
    EXPECT_EQ(wide->ReadLineW(units, 10), 2);
    EXPECT_EQ(kt::test::Wide(units), KTW("x\n"));
}

INSTANTIATE_TEST_SUITE_P(Streams, StreamOperations, ::testing::ValuesIn(kt::test::kSeekableStreams),
                         kt::test::StreamKindName());

}  // namespace
