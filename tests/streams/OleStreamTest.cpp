// The stream over an OLE stream: its name, its line rule, and how the OLE
// stream's failures come out.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "kticore/core/Exception.h"
#include "tests/support/FailingOleStream.h"
#include "tests/support/Streams.h"
#include "tests/support/WideText.h"

namespace {

using kt::test::Bytes;
using kt::test::FailingOleStream;
using kt::test::Ref;

// What a CXFileException said. Its name lives only as long as the thrown
// object, so it is copied inside the handler.
struct Failure {
    DWORD code = XE_NONE;
    DWORD operation = 0;
    kt::test::WideString name;
};

Failure FailureOf(void (*operation)(IXStream*), IXStream* stream) {
    try {
        operation(stream);
    } catch (const CXFileException& failure) {
        return {failure.code, failure.operation, kt::test::Wide(failure.name)};
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
}

TEST(OleBackedStream, HoldsOneReferenceToTheOleStream) {
    FailingOleStream ole;
    IXStream* stream = kt_NewStreamOnOleStream("counted", &ole);
    EXPECT_EQ(ole.refs, 2u);
    stream->Release();
    EXPECT_EQ(ole.refs, 1u);
}

TEST(OleBackedStream, NameIsCutToSixtyThreeBytes) {
    const std::string longName(70, 'n');
    Ref<IXStream> stream(kt::test::NewOleBackedStream(longName.c_str()));
    EXPECT_EQ(std::string(stream->GetName()), longName.substr(0, 63));
}

TEST(OleBackedStream, FailedCallsThrowTheMappedStatusWithTheStreamsName) {
    FailingOleStream ole;
    Ref<IXStream> stream(kt_NewStreamOnOleStream("broken", &ole));
    ole.readStatus = static_cast<HRESULT>(0x80030005);  // access denied: an element in use
    Failure read = FailureOf([](IXStream* s) { s->ReadByte(); }, stream.get());
    EXPECT_EQ(read.code, XE_SHARING);
    EXPECT_EQ(read.operation, XFILEOP_READ_WRITE);
    EXPECT_EQ(read.name, KTW("broken"));

    ole.writeStatus = static_cast<HRESULT>(0x80030070);  // medium full
    Failure write = FailureOf([](IXStream* s) { s->WriteDWord(1); }, stream.get());
    EXPECT_EQ(write.code, XE_DISK_FULL);
    EXPECT_EQ(write.operation, XFILEOP_READ_WRITE);

    ole.seekStatus = static_cast<HRESULT>(0x80030019);  // seek error
    Failure seek = FailureOf([](IXStream* s) { s->Seek(0, 1); }, stream.get());
    EXPECT_EQ(seek.code, XE_IO_FAULT);
    EXPECT_EQ(seek.operation, XFILEOP_SEEK);

    ole.seekStatus = static_cast<HRESULT>(0x80000001);  // a status storage does not list
    EXPECT_EQ(FailureOf([](IXStream* s) { s->GetLength(); }, stream.get()).code, XE_BAD_DATA);
}

TEST(OleBackedStream, CountedValuesComeWholeWhereTheLengthFiguresCanNotBeTrusted) {
    // A stream that can not seek, and one that answers 0 for its position and
    // length (as a stream past 4 GiB may): the stored count decides, and a
    // count that promises two gigabytes takes what arrives.
    for (const HRESULT seekStatus : {STG_E_SEEKERROR, S_OK}) {
        FailingOleStream ole;
        ole.seekStatus = seekStatus;
        ole.content = {0x0A, 0x00, 0x03, 0x00, 0x00, 0x00, 'a', 'b', 0x00, 0x02, 0x00, 0x07,
                       0x0A, 0x00, 0xFF, 0xFF, 0xFF, 0x7F, 'c', 0x00};
        Ref<IXStream> stream(kt_NewStreamOnOleStream("untold length", &ole));
        CKTVariant read;
        EXPECT_EQ(stream->ReadVariant(&read), 1);
        EXPECT_TRUE(read == CKTVariant("ab"));
        EXPECT_EQ(stream->ReadVariant(&read), 1);
        EXPECT_TRUE(read == CKTVariant(static_cast<unsigned char>(7)));
        EXPECT_EQ(stream->ReadVariant(&read), 1);
        EXPECT_TRUE(read == CKTVariant("c"));
    }
}

TEST(OleBackedStream, ALineFeedOnTheLastPlaceGivesWayToTheTerminator) {
    Ref<IXStream> stream = kt::test::StreamOf({"Ole", [] { return kt::test::NewOleBackedStream(); }},
                                              {'a', 'b', 'c', '\n', 'd', 'e', 'f', 'g'});
    char line[8];
    EXPECT_EQ(stream->ReadLine(line, 4), 3);
    EXPECT_STREQ(line, "abc");
    // A line of maxChars or more stops after maxChars, terminated behind them.
    EXPECT_EQ(stream->ReadLine(line, 3), 3);
    EXPECT_STREQ(line, "def");
    std::memset(line, 'x', sizeof line);
    EXPECT_EQ(stream->ReadLine(line, 0), 0);
    EXPECT_EQ(line[0], 0);
}

}  // namespace
