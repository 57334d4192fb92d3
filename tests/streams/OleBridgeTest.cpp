// The bridge over a host's own OLE stream: the forgiving twin of the stream
// that storages give. It throws nothing of what the OLE stream reports, reads
// answer yes or no, and wide text does not survive it.
#include <gtest/gtest.h>

#include <functional>
#include <iterator>
#include <limits>
#include <string>

#include "kticore/core/Exception.h"
#include "tests/support/FailingOleStream.h"
#include "tests/support/GoldenVariants.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/Streams.h"

namespace {

using namespace kt::test;

// A bridge over a memory OLE stream that holds `bytes` and was left at its
// end, as a host may leave it.
struct Bridged {
    explicit Bridged(const Bytes& bytes = {}) : ole(kt::sys::NewMemoryOleStream()) {
        ULONG written = 0;
        ole->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written);
        bridge.reset(new_StreamByOleStream(ole.get()));
    }
    // What the OLE stream holds, read through a stream of the storages' kind.
    Bytes OleBytes() const {
        return AllBytes(Ref<IXStream>(kt_NewStreamOnOleStream("reader", ole.get())).get());
    }
    Ref<IStream> ole;
    Ref<IXStream> bridge;
};

TEST(OleBridge, EveryKindButWideTextKeepsTheStoredForm) {
    for (const Golden& form : GoldenForms()) {
        SCOPED_TRACE("kind " + std::to_string(form.value.vt));
        Bridged written;
        written.bridge->WriteVariant(&form.value);
        CKTVariant read("something to clear");
        if (form.value.vt == KTVT_WSTR) {
            EXPECT_EQ(written.OleBytes(), (Bytes{0x13, 0x00}));
            EXPECT_EQ(FileFailureOf([&] { Bridged(form.bytes).bridge->ReadVariant(&read); }),
                      (FileFailure{XE_BAD_DATA, XFILEOP_READ_WRITE, {}}));
            continue;
        }
        EXPECT_EQ(written.OleBytes(), form.bytes);
        const bool object = form.value.vt == KTVT_OBJECT;  // no object reads as "none"
        EXPECT_EQ(Bridged(form.bytes).bridge->ReadVariant(&read), object ? 0 : 1);
        EXPECT_TRUE(object ? read.vt == KTVT_OBJECT : read == form.value);
    }
}

TEST(OleBridge, APayloadCutShortReadsAsNoWithWhatCame) {
    static unsigned char blob[] = {0xAA, 0, 0};
    const Golden cutShort[] = {
        {CKTVariant(std::numeric_limits<double>::denorm_min()), {0x08, 0x00, 0x01, 0, 0, 0}},
        {CKTVariant("ab"), {0x0A, 0x00, 0x05, 0x00, 0x00, 0x00, 'a', 'b'}},
        {CKTVariant(tagKTBLOB{3, blob}), {0x11, 0x00, 0x03, 0x00, 0x00, 0x00, 0xAA}},
    };
    for (const Golden& form : cutShort) {
        SCOPED_TRACE("kind " + std::to_string(form.value.vt));
        CKTVariant read;
        EXPECT_EQ(Bridged(form.bytes).bridge->ReadVariant(&read), 0);
        EXPECT_TRUE(read == form.value);
    }
}

TEST(OleBridge, ReadsAnswerWhetherAllCameAndKnowNoPositionOrLength) {
    Bridged held({'a', 'b', 'c', 'd'});
    IXStream* bridge = held.bridge.get();
    char buffer[10] = {};
    EXPECT_EQ(bridge->Read(buffer, sizeof buffer), 0u);
    EXPECT_STREQ(buffer, "abcd");
    EXPECT_EQ(bridge->GetPosition(), 0u);
    EXPECT_EQ(bridge->GetLength(), 0u);
    EXPECT_STREQ(bridge->GetName(), "");
    EXPECT_EQ(bridge->ReadDWord(), 0u);  // at the end: nothing came, and nothing is thrown
    EXPECT_EQ(bridge->Seek(0, 0), 0u);
    EXPECT_EQ(bridge->Read(buffer, 4), 1u);
    EXPECT_EQ(bridge->Seek(3, 0), 3u);
    EXPECT_EQ(bridge->ReadWord(), 'd');  // half a word: what came
}

TEST(OleBridge, LinesRunToTheirTerminatorNotToALineFeed) {
    const struct {
        Bytes bytes;
        int maxChars, count;
        std::string text;
    } cases[] = {
        {{'a', '\n', 'b', 0, 'c'}, 100, 4, "a\nb"},
        {{'a', 'b', 'c'}, 2, 2, "ab"},  // no terminator: the text is open
        {{'a'}, 0, 0, ""},
        {{}, 5, 1, ""},  // at the end the zeros that came end the line
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.maxChars);
        char line[110] = {};
        EXPECT_EQ(Bridged(c.bytes).bridge->ReadLine(line, c.maxChars), c.count);
        EXPECT_EQ(std::string(line), c.text);
    }
    KTWCHAR units[8] = {};
    EXPECT_EQ(Bridged({'a', 0, '\n', 0, 0, 0, 'b', 0}).bridge->ReadLineW(units, 8), 3);
    EXPECT_EQ(Wide(units), W("a\n"));
}

TEST(OleBridge, ANullTextIsWrittenAsItsTerminator) {
    Bridged held;
    held.bridge->WriteString(nullptr);
    held.bridge->WriteStringW(nullptr);
    held.bridge->WriteString("ab");
    EXPECT_EQ(held.OleBytes(), (Bytes{0, 0, 0, 'a', 'b', 0}));
}

TEST(OleBridge, AStreamThatFailsEveryCallMakesNothingThrow) {
    FailingOleStream ole;
    ole.readStatus = ole.writeStatus = ole.seekStatus = ole.commitStatus = STG_E_INVALIDFUNCTION;
    ole.content = {1, 2, 3, 4};
    IXStream* bridge = new_StreamByOleStream(&ole);
    char line[8];
    const CKTVariant text("text");
    CKTVariant read("something to clear");
    const std::function<void()> calls[] = {
        [&] { EXPECT_EQ(bridge->Read(line, 4), 0u); },
        [&] { EXPECT_EQ(bridge->ReadVariant(&read) + read.vt, 0); },
        [&] { bridge->ReadDouble(); },
        [&] { bridge->ReadLine(line, 7); },
        [&] { bridge->Seek(2, 0); },
        [&] { bridge->WriteDWord(5); },
        [&] { bridge->WriteVariant(&text); },
    };
    for (size_t i = 0; i < std::size(calls); ++i) {
        SCOPED_TRACE("call " + std::to_string(i));
        EXPECT_NO_THROW(calls[i]());
    }
    // The offset goes as unsigned (-1 seeks far forward), the origin unchecked.
    bridge->Seek(-1, 7);
    EXPECT_EQ(ole.lastMove, 0xFFFFFFFF);
    EXPECT_EQ(ole.lastOrigin, 7u);
    EXPECT_NO_THROW(bridge->Release());  // its commit fails
    // A read that brought everything but did not say S_OK is a no.
    FailingOleStream doubtful;
    doubtful.readStatus = S_FALSE;
    doubtful.content = {7, 8};
    unsigned char two[2] = {};
    EXPECT_EQ(Ref<IXStream>(new_StreamByOleStream(&doubtful))->Read(two, 2), 0u);
}

TEST(OleBridge, HoldsTheHostsStreamAndCommitsItBeforeLettingGo) {
    FailingOleStream ole;
    IXStream* bridge = new_StreamByOleStream(&ole);
    EXPECT_EQ(ole.refs, 2u);
    EXPECT_EQ(Stream_GetOLEStream(bridge), &ole);
    EXPECT_EQ(ole.refs, 3u);
    ole.Release();
    EXPECT_EQ(ole.commits, 0);
    bridge->Release();
    EXPECT_EQ(ole.commits, 1);
    EXPECT_EQ(ole.commitFlags, 0u);
    EXPECT_EQ(ole.refsAtCommit, 2u);  // the bridge still held it
    EXPECT_EQ(ole.refs, 1u);
}

// The bridge gives its own: HoldsTheHostsStreamAndCommitsItBeforeLettingGo.
TEST(OleBridge, OnlyStreamsOverAnOleStreamGiveOne) {
    const Ref<IStream> ole(kt::sys::NewMemoryOleStream());
    const Ref<IXStream> stored(kt_NewStreamOnOleStream("stored", ole.get()));
    const Ref<IStream> given(static_cast<IStream*>(Stream_GetOLEStream(stored.get())));
    EXPECT_EQ(given.get(), ole.get());
    EXPECT_EQ(Stream_GetOLEStream(Ref<IXStream>(new_StreamOnMemory()).get()), nullptr);
    EXPECT_EQ(Stream_GetOLEStream(nullptr), nullptr);
    EXPECT_THROW(new_StreamByOleStream(nullptr), CXIFaceException);
}

}  // namespace
