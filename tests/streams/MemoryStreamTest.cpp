// The memory stream: its growing block, its clamped positions, its own line
// rule and its progress sink; and the empty stream beside it.
#include <gtest/gtest.h>

#include <cstring>

#include "kticore/core/Exception.h"
#include "tests/support/Streams.h"

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
    int calls = 0;
    ULONG References() const { return refs; }

private:
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

TEST(MemoryStream, BlockGrowsByTheStepRule) {
    // The block moves exactly when its capacity is passed: 4096, then
    // 5000 -> 12288, then 12289 -> 28672.
    Ref<IXStream> stream(new_StreamOnMemory());
    Ref<IMemBlock> block = BlockOf(stream.get());
    WriteZeros(stream.get(), 10);
    EXPECT_EQ(block->GetBlockSize(), 10u);
    void* first = block->GetBlockData();
    WriteZeros(stream.get(), 4086);
    EXPECT_EQ(block->GetBlockData(), first);
    WriteZeros(stream.get(), 5000 - 4096);
    void* second = block->GetBlockData();
    EXPECT_NE(second, first);
    WriteZeros(stream.get(), 12288 - 5000);
    EXPECT_EQ(block->GetBlockData(), second);
    WriteZeros(stream.get(), 1);
    void* third = block->GetBlockData();
    EXPECT_NE(third, second);
    WriteZeros(stream.get(), 28672 - 12289);
    EXPECT_EQ(block->GetBlockData(), third);
    EXPECT_EQ(block->GetBlockSize(), 28672u);
}

TEST(MemoryStream, BlockHoldsTheBytesWritten) {
    Ref<IXStream> stream(new_StreamOnMemory());
    stream->WriteString("hello");
    Ref<IMemBlock> block = BlockOf(stream.get());
    EXPECT_EQ(std::memcmp(block->GetBlockData(), "hello", 6), 0);
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
    // An empty block still grows.
    block->SetBlockData(nullptr, 0);
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
    EXPECT_THROW(stream->ReadByte(), CXException);
    stream.reset();
    EXPECT_EQ(sink->References(), 1u);
    sink->Release();
}

TEST(MemoryStream, ANullSinkIsNoSink) {
    Ref<IXStream> stream(new_StreamOnMemory(nullptr));
    stream->WriteDWord(7);
    EXPECT_EQ(stream->GetLength(), 4u);
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
    CKTVariant read("before");
    EXPECT_EQ(stream->ReadVariant(&read), 1);
    EXPECT_EQ(read.vt, KTVT_EMPTY);
    EXPECT_STREQ(stream->GetName(), "Empty stream");
    EXPECT_THROW(stream->Seek(0, 5), CXFileException);
}

}  // namespace
