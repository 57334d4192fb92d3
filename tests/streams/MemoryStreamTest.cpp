// The memory stream: its growing block, its clamped positions, its own line
// rule and its progress sink; and the empty stream beside it.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <iterator>
#include <string>
#include <utility>

#include "kticore/core/Exception.h"
#include "streams/MemoryStream.h"
#include "tests/support/Streams.h"
#include "tests/support/WideText.h"

namespace {

using kt::test::Bytes;
using kt::test::Ref;

Ref<IMemBlock> BlockOf(IXStream* stream) {
    IMemBlock* block = nullptr;
    EXPECT_EQ(stream->QueryInterface(typeid(IMemBlock), reinterpret_cast<void**>(&block)), 1);
    return Ref<IMemBlock>(block);
}

void WriteZeros(IXStream* stream, unsigned count) {
    const Bytes zeros(count);
    stream->Write(zeros.data(), count);
}

// Answers "cancel" from the given call on, and counts the calls.
class CancellingSink final : public CKTUnknownImpl<KTIFC::IProgress> {
public:
    explicit CancellingSink(int cancelAt) : cancelAt(cancelAt) {}
    int IsCancelled() override { return ++calls >= cancelAt; }
    void SetRange(int, int) override {}
    ULONG References() const { return refs; }
    int calls = 0;
    int cancelAt;
};

TEST(MemoryStream, StartsEmptyWithoutABlock) {
    Ref<IXStream> stream(new_StreamOnMemory());
    EXPECT_EQ(stream->GetLength(), 0u);
    EXPECT_EQ(BlockOf(stream.get())->GetBlockData(), nullptr);
    char byte;
    EXPECT_EQ(stream->Read(&byte, 1), 0u);
    EXPECT_STREQ(stream->GetName(), "Memory stream");
}

TEST(MemoryStream, BlockInterfaceSharesTheStreamsCount) {
    Ref<IXStream> stream(new_StreamOnMemory());
    IMemBlock* block = nullptr;
    stream->QueryInterface(typeid(IMemBlock), reinterpret_cast<void**>(&block));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block->AddRef(), 3u);
    EXPECT_EQ(stream->Release(), 2u);
    IXStream* back = nullptr;
    EXPECT_EQ(block->QueryInterface(typeid(IXStream), reinterpret_cast<void**>(&back)), 1);
    EXPECT_EQ(back, stream.get());
    back->Release();
    block->Release();
}

TEST(MemoryStream, BlockGrowsByTheStepRuleAndStaysWhileWritesFit) {
    // The need rounded up past the next step, plus what the block had.
    kt::CMemBlockBuffer buffer;
    const std::pair<ULONG, ULONG> growth[] = {{10, 4096}, {4096, 4096}, {5000, 12288},
                                              {12288, 12288}, {12289, 28672}};
    for (const auto& [needed, capacity] : growth) {
        buffer.Reserve(needed);
        EXPECT_EQ(buffer.capacity, capacity) << needed;
    }
    Ref<IXStream> stream(new_StreamOnMemory());
    Ref<IMemBlock> block = BlockOf(stream.get());
    WriteZeros(stream.get(), 10);
    void* first = block->GetBlockData();
    WriteZeros(stream.get(), 4086);
    EXPECT_EQ(block->GetBlockData(), first);
    EXPECT_EQ(block->GetBlockSize(), 4096u);
}

TEST(MemoryStream, BytesFromTheStreamsOwnBlockAreWrittenAndReadSafely) {
    // The source lies in the block that the write replaces, or overlaps the
    // place it is copied to.
    Ref<IXStream> stream(new_StreamOnMemory());
    Bytes pattern(4000);
    for (size_t i = 0; i < pattern.size(); ++i)
        pattern[i] = static_cast<unsigned char>(i * 13);
    stream->Write(pattern.data(), 4000);
    Ref<IMemBlock> block = BlockOf(stream.get());
    stream->Write(block->GetBlockData(), 1000);
    stream->Seek(1, 0);
    stream->Write(block->GetBlockData(), 100);
    stream->Seek(0, 0);
    auto* data = static_cast<unsigned char*>(block->GetBlockData());
    EXPECT_EQ(stream->Read(data + 2, 100), 100u);

    Bytes expected = pattern;
    expected.insert(expected.end(), pattern.begin(), pattern.begin() + 1000);
    std::memmove(expected.data() + 1, expected.data(), 100);
    std::memmove(expected.data() + 2, expected.data(), 100);
    EXPECT_EQ(kt::test::AllBytes(stream.get()), expected);
}

TEST(MemoryStream, ALargeBlockKeepsItsBytesAsItGrowsAndIsReplaced) {
    // Past 1 MiB a block grows in its own address space on Windows.
    Bytes pattern(3 << 20);
    for (size_t i = 0; i < pattern.size(); ++i)
        pattern[i] = static_cast<unsigned char>(i * 7 + i / 4099);
    Ref<IXStream> stream(new_StreamOnMemory());
    for (size_t at = 0; at < pattern.size(); at += 65536)
        stream->Write(pattern.data() + at, 65536);
    EXPECT_EQ(kt::test::AllBytes(stream.get()), pattern);
    Ref<IMemBlock> block = BlockOf(stream.get());
    block->SetBlockData(static_cast<unsigned char*>(block->GetBlockData()) + 1, 2 << 20);
    EXPECT_EQ(kt::test::AllBytes(stream.get()), Bytes(pattern.begin() + 1, pattern.begin() + 1 + (2 << 20)));
}

TEST(MemoryStream, PositionsAreClampedToTheStream) {
    Ref<IXStream> stream(new_StreamOnMemory());
    WriteZeros(stream.get(), 10);
    EXPECT_EQ(stream->Seek(100, 0), 10u);
    EXPECT_EQ(stream->Seek(-5, 0), 0u);
    EXPECT_EQ(stream->Seek(-50, 2), 0u);
    EXPECT_EQ(stream->Seek(3, 2), 10u);
}

TEST(MemoryStream, SetBlockDataReplacesTheBlockAndKeepsThePosition) {
    Ref<IXStream> stream(new_StreamOnMemory());
    WriteZeros(stream.get(), 10);
    Ref<IMemBlock> block = BlockOf(stream.get());
    block->SetBlockData("abc", 3);
    EXPECT_EQ(stream->GetLength(), 3u);
    EXPECT_EQ(stream->GetPosition(), 10u);
    char byte;
    EXPECT_EQ(stream->Read(&byte, 1), 0u);  // past the new end
    stream->WriteByte('z');                 // the gap reads as zeros
    EXPECT_EQ(kt::test::AllBytes(stream.get()), (Bytes{'a', 'b', 'c', 0, 0, 0, 0, 0, 0, 0, 'z'}));
    // An empty block has no data to hand out, and still grows.
    block->SetBlockData("abc", 0);
    EXPECT_EQ(block->GetBlockData(), nullptr);
    EXPECT_EQ(block->GetBlockSize(), 0u);
    stream->Seek(0, 0);
    WriteZeros(stream.get(), 5);
    EXPECT_EQ(stream->GetLength(), 5u);
}

TEST(MemoryStream, ReadLinePutsTheTerminatorBehindTheLastCharacterRead) {
    Ref<IXStream> stream = kt::test::StreamOf(kt::test::kSeekableStreams[0],
                                              {'a', 'b', 'c', '\n', 'd', 'e', 'f', 'g', '\n'});
    char line[8];
    EXPECT_EQ(stream->ReadLine(line, 4), 4);  // the line feed on the last place is kept
    EXPECT_STREQ(line, "abc\n");
    std::memset(line, 'x', sizeof line);
    EXPECT_EQ(stream->ReadLine(line, 3), 4);  // ran out: the count is one more
    EXPECT_STREQ(line, "def");
    EXPECT_EQ(line[4], 0);

    Ref<IXStream> wide = kt::test::StreamOf(kt::test::kSeekableStreams[0],
                                            {'d', 0, 'e', 0, 'f', 0, 'g', 0, '\n', 0});
    KTWCHAR units[6];
    std::fill(std::begin(units), std::end(units), KTWCHAR{'x'});
    EXPECT_EQ(wide->ReadLineW(units, 3), 4);
    EXPECT_EQ(kt::test::Wide(units), KTW("def"));
    EXPECT_EQ(units[4], 0);
    EXPECT_EQ(units[5], 'x');
    EXPECT_EQ(wide->ReadLineW(units, 3), 2);  // the rest of the line
    EXPECT_EQ(kt::test::Wide(units), KTW("g\n"));
}

TEST(MemoryStream, ASinkSaysStopAfterTheDataOfThatCallHasMoved) {
    auto* sink = new CancellingSink(3);
    Ref<IXStream> stream(new_StreamOnMemory(sink));
    EXPECT_EQ(sink->References(), 2u);
    stream->WriteByte(1);
    stream->WriteByte(2);
    try {
        stream->WriteByte(3);
        ADD_FAILURE() << "not cancelled";
    } catch (const CXException& failure) {
        EXPECT_EQ(failure.code, XE_CANCELLED);
    }
    EXPECT_EQ(stream->GetLength(), 3u);
    stream->Seek(0, 0);  // seeks do not ask
    EXPECT_EQ(sink->calls, 3);
    try {
        stream->ReadByte();
        ADD_FAILURE() << "a read was not cancelled";
    } catch (const CXException& failure) {
        EXPECT_EQ(failure.code, XE_CANCELLED);
    }
    EXPECT_EQ(sink->calls, 4);
    EXPECT_EQ(stream->GetPosition(), 1u);
    stream.reset();
    EXPECT_EQ(sink->References(), 1u);
    sink->Release();
}

TEST(MemoryStream, ALargeTextOrBlobAsksTheSinkOnceForItsPayload) {
    // The kind, the length word and the payload: three reads, three questions,
    // so a sink that stops at the third stops behind the value.
    const std::string text(300000, 'x');
    Bytes bytes(300000, 0x5A);
    const tagKTBLOB blob{static_cast<ULONG>(bytes.size()), bytes.data()};
    const CKTVariant values[] = {CKTVariant(text.c_str()), CKTVariant(blob)};
    for (const CKTVariant& value : values) {
        SCOPED_TRACE(value.vt);
        auto* sink = new CancellingSink(INT_MAX);
        Ref<IXStream> stream(new_StreamOnMemory(sink));
        stream->WriteVariant(&value);
        stream->WriteByte(9);
        stream->Seek(0, 0);
        sink->calls = 0;
        sink->cancelAt = 3;
        CKTVariant read;
        try {
            stream->ReadVariant(&read);
            ADD_FAILURE() << "not cancelled";
        } catch (const CXException& failure) {
            EXPECT_EQ(failure.code, XE_CANCELLED);
        }
        EXPECT_EQ(sink->calls, 3);
        EXPECT_EQ(stream->GetPosition(), stream->GetLength() - 1);
        stream.reset();
        sink->Release();
    }
}

TEST(EmptyStream, SwallowsWritesAndReadsZerosWithoutEnd) {
    Ref<IXStream> stream(new_EmptyStream());
    stream->WriteDWord(7);
    stream->WriteString("text");
    const CKTVariant value("stored");
    stream->WriteVariant(&value);
    EXPECT_EQ(stream->GetLength(), 1u);
    EXPECT_EQ(stream->Seek(0, 2), 1u);
    EXPECT_EQ(stream->GetPosition(), 1u);
    char buffer[4] = {1, 2, 3, 4};
    EXPECT_EQ(stream->Read(buffer, 4), 1u);
    EXPECT_EQ(buffer[0] | buffer[1] | buffer[2] | buffer[3], 0);
    EXPECT_EQ(stream->ReadDWord(), 0u);
    EXPECT_EQ(stream->ReadDouble(), 0.0);
    char line[4] = "abc";
    EXPECT_EQ(stream->ReadLine(line, 4), 1);
    EXPECT_STREQ(line, "");
    KTWCHAR units[4] = {'a', 'b', 'c', 0};
    EXPECT_EQ(stream->ReadLineW(units, 4), 1);
    EXPECT_EQ(units[0], 0);
    CKTVariant read("before");
    EXPECT_EQ(stream->ReadVariant(&read), 1);
    EXPECT_EQ(read.vt, KTVT_EMPTY);
    EXPECT_STREQ(stream->GetName(), "Empty stream");
    kt::test::ExpectBadOriginRefused(stream.get());
}

}  // namespace
