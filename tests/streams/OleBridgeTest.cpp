// The bridge over a host's own OLE stream: the forgiving twin of the stream
// that storages give. It throws nothing of what the OLE stream reports, reads
// answer yes or no, and wide text does not survive it.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

#include "kticore/core/Exception.h"
#include "tests/support/FailingOleStream.h"
#include "tests/support/GoldenVariants.h"
#include "tests/support/Streams.h"

namespace {

using kt::test::AllBytes;
using kt::test::Bytes;
using kt::test::FailingOleStream;
using kt::test::Golden;
using kt::test::GoldenForms;
using kt::test::Ref;

// A memory OLE stream holding `bytes`, left at its end as a host may leave it.
Ref<IStream> OleHolding(const Bytes& bytes = {}) {
    Ref<IStream> ole(kt::sys::NewMemoryOleStream());
    ULONG written = 0;
    ole->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written);
    return ole;
}

// What the OLE stream holds, read through a stream of the storages' kind.
Bytes OleBytes(IStream* ole) {
    Ref<IXStream> reader(kt_NewStreamOnOleStream("reader", ole));
    return AllBytes(reader.get());
}

TEST(OleBridge, EveryKindButWideTextKeepsTheStoredForm) {
    for (const Golden& form : GoldenForms()) {
        SCOPED_TRACE("kind " + std::to_string(form.value.vt));
        const bool wide = form.value.vt == KTVT_WSTR;
        Ref<IStream> written = OleHolding();
        {
            Ref<IXStream> bridge(new_StreamByOleStream(written.get()));
            bridge->WriteVariant(&form.value);
        }
        EXPECT_EQ(OleBytes(written.get()), (wide ? Bytes{0x13, 0x00} : form.bytes));

        Ref<IStream> stored = OleHolding(form.bytes);
        Ref<IXStream> bridge(new_StreamByOleStream(stored.get()));
        CKTVariant read("something to clear");
        if (wide) {
            try {
                bridge->ReadVariant(&read);
                ADD_FAILURE() << "a wide text was read";
            } catch (const CXFileException& failure) {
                EXPECT_EQ(failure.code, XE_BAD_DATA);
                EXPECT_EQ(failure.operation, XFILEOP_READ_WRITE);
                EXPECT_EQ(failure.name[0], 0);
            }
            continue;
        }
        EXPECT_EQ(bridge->ReadVariant(&read), form.value.vt == KTVT_OBJECT ? 0 : 1);
        EXPECT_EQ(read.vt, form.value.vt);
        if (form.value.vt != KTVT_OBJECT) {
            EXPECT_TRUE(read == form.value);
        }
    }
}

TEST(OleBridge, ReadsAnswerWhetherAllCameAndKnowNoPositionOrLength) {
    Ref<IStream> ole = OleHolding({'a', 'b', 'c', 'd'});
    Ref<IXStream> bridge(new_StreamByOleStream(ole.get()));
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
    struct Case {
        Bytes bytes;
        int maxChars;
        int count;
        std::string text;
    };
    const Case cases[] = {
        {{'a', '\n', 'b', 0, 'c'}, 100, 4, "a\nb"},
        {{'a', 'b', 'c'}, 2, 2, "ab"},  // no terminator: the text is open
        {{'a'}, 0, 0, ""},
        {{}, 5, 1, ""},  // at the end the zeros that came end the line
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.maxChars);
        Ref<IStream> ole = OleHolding(c.bytes);
        Ref<IXStream> bridge(new_StreamByOleStream(ole.get()));
        char line[110];
        std::memset(line, 0, sizeof line);
        EXPECT_EQ(bridge->ReadLine(line, c.maxChars), c.count);
        EXPECT_EQ(std::string(line), c.text);
    }
    Ref<IStream> ole = OleHolding({'a', 0, '\n', 0, 0, 0, 'b', 0});
    Ref<IXStream> bridge(new_StreamByOleStream(ole.get()));
    KTWCHAR units[8] = {};
    EXPECT_EQ(bridge->ReadLineW(units, 8), 3);
    EXPECT_EQ(kt::test::Wide(units), kt::test::W("a\n"));
}

TEST(OleBridge, ANullTextIsWrittenAsItsTerminator) {
    Ref<IStream> ole = OleHolding();
    {
        Ref<IXStream> bridge(new_StreamByOleStream(ole.get()));
        bridge->WriteString(nullptr);
        bridge->WriteStringW(nullptr);
        bridge->WriteString("ab");
    }
    EXPECT_EQ(OleBytes(ole.get()), (Bytes{0, 0, 0, 'a', 'b', 0}));
}

TEST(OleBridge, AStreamThatFailsEveryCallMakesNothingThrow) {
    FailingOleStream ole;
    ole.readStatus = ole.writeStatus = ole.seekStatus = ole.commitStatus = STG_E_INVALIDFUNCTION;
    ole.content = {1, 2, 3, 4};
    IXStream* bridge = new_StreamByOleStream(&ole);
    char line[8];
    const CKTVariant text("text");
    CKTVariant read("something to clear");
    struct Operation {
        const char* name;
        std::function<unsigned()> run;
        unsigned result;
    };
    const Operation operations[] = {
        {"Read", [&] { return bridge->Read(line, 4); }, 0},
        {"ReadByte", [&] { return unsigned{bridge->ReadByte()}; }, 0},
        {"ReadDouble", [&] { return static_cast<unsigned>(bridge->ReadDouble()); }, 0},
        {"ReadLine", [&] { return static_cast<unsigned>(bridge->ReadLine(line, 7)); }, 1},
        {"ReadVariant", [&] { return static_cast<unsigned>(bridge->ReadVariant(&read)) + read.vt; },
         0},
        {"Seek", [&] { return bridge->Seek(2, 0); }, 0},
        {"Write", [&] { return bridge->Write("ab", 2), 0u; }, 0},
        {"WriteDWord", [&] { return bridge->WriteDWord(5), 0u; }, 0},
        {"WriteString", [&] { return bridge->WriteString("ab"), 0u; }, 0},
        {"WriteVariant", [&] { return bridge->WriteVariant(&text), 0u; }, 0},
    };
    for (const Operation& operation : operations) {
        SCOPED_TRACE(operation.name);
        unsigned result = 99;
        EXPECT_NO_THROW(result = operation.run());
        EXPECT_EQ(result, operation.result);
    }
    // The offset goes as unsigned (-1 seeks far forward), the origin unchecked.
    bridge->Seek(-1, 7);
    EXPECT_EQ(ole.lastMove, 0xFFFFFFFF);
    EXPECT_EQ(ole.lastOrigin, 7u);
    bridge->Release();
    EXPECT_EQ(ole.commits, 1);  // committed though the commit fails
    EXPECT_EQ(ole.refs, 1u);

    // A read that brought everything but did not say S_OK is a no.
    FailingOleStream doubtful;
    doubtful.readStatus = 1;  // S_FALSE
    doubtful.content = {7, 8};
    Ref<IXStream> other(new_StreamByOleStream(&doubtful));
    unsigned char two[2] = {};
    EXPECT_EQ(other->Read(two, 2), 0u);
    EXPECT_EQ(two[1], 8);
}

TEST(OleBridge, HoldsTheHostsStreamAndCommitsItAtTheEnd) {
    FailingOleStream ole;
    IXStream* bridge = new_StreamByOleStream(&ole);
    EXPECT_EQ(ole.refs, 2u);
    EXPECT_EQ(Stream_GetOLEStream(bridge), &ole);
    EXPECT_EQ(ole.refs, 3u);
    ole.Release();
    EXPECT_EQ(ole.commits, 0);
    bridge->Release();
    EXPECT_EQ(ole.commits, 1);
    EXPECT_EQ(ole.refs, 1u);
}

TEST(OleBridge, OnlyStreamsOverAnOleStreamGiveOne) {
    Ref<IStream> ole = OleHolding();
    struct Case {
        const char* name;
        IXStream* stream;
        IStream* expected;
    };
    const Case cases[] = {
        {"bridge", new_StreamByOleStream(ole.get()), ole.get()},
        {"storage's kind", kt_NewStreamOnOleStream("stored", ole.get()), ole.get()},
        {"memory", new_StreamOnMemory(), nullptr},
        {"empty", new_EmptyStream(), nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto* given = static_cast<IStream*>(Stream_GetOLEStream(c.stream));
        EXPECT_EQ(given, c.expected);
        if (given != nullptr)
            given->Release();
        c.stream->Release();
    }
    EXPECT_EQ(Stream_GetOLEStream(nullptr), nullptr);
    EXPECT_THROW(new_StreamByOleStream(nullptr), CXIFaceException);
}

}  // namespace
