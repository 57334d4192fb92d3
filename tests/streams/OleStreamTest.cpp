// The stream over an OLE stream: its name, its line rule, and how the OLE
// stream's failures come out.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "kticore/core/Exception.h"
#include "tests/support/Streams.h"
#include "tests/support/WideText.h"

namespace {

using kt::test::Bytes;
using kt::test::Ref;

// An OLE stream whose calls fail with a chosen status; reads that succeed
// give the bytes of `content`.
class FailingOleStream final : public IStream {
public:
    HRESULT readStatus = S_OK, writeStatus = S_OK, seekStatus = S_OK;
    Bytes content;

    ULONG STDMETHODCALLTYPE AddRef() override { return ++refs; }
    ULONG STDMETHODCALLTYPE Release() override { return --refs; }
    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG size, ULONG* read) override {
        *read = readStatus < 0 ? 0 : std::min<ULONG>(size, static_cast<ULONG>(content.size() - at));
        if (*read != 0)
            std::memcpy(buffer, content.data() + at, *read);
        at += *read;
        return readStatus;
    }
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG* written) override {
        *written = 0;
        return writeStatus;
    }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER* position) override {
        position->QuadPart = 0;
        return seekStatus;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return S_OK; }
#if defined(_WIN32)
    // The rest of the published interface, which the stream never calls.
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }
#endif
    ULONG refs = 1;

private:
    size_t at = 0;
};

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
