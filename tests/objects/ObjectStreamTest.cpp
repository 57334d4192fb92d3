// Objects on streams: the stored form byte for byte, nesting, and the proxy
// that carries objects of unknown classes through unchanged.
#include <gtest/gtest.h>

#include <string>

#include "kticore/core/Exception.h"
#include "kticore/objects/Persist.h"
#include "kticore/objects/Registry.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/Streams.h"
#include "tests/support/TestHelper.h"
#include "tests/support/TestClasses.h"

namespace {

using kt::test::AllBytes;
using kt::test::Bytes;
using kt::test::Ref;

// A class of the test itself, never registered: its name and payload are
// whatever the test gives, and its Save may fail with a code after writing.
class CFixedPayload : public CKTUnknownImpl<IPersistXStream> {
public:
    CFixedPayload(std::string name, Bytes payload, DWORD saveFailure = XE_NONE)
        : name(std::move(name)), payload(std::move(payload)), saveFailure(saveFailure) {}
    const char* GetClassName() override { return name.c_str(); }
    ULONG GetSize() override { return static_cast<ULONG>(payload.size()); }
    void Load(IXStream*) override {}
    void Save(IXStream* stream) override {
        if (!payload.empty())
            stream->Write(payload.data(), static_cast<unsigned>(payload.size()));
        if (saveFailure != XE_NONE)
            throw CXException(saveFailure);
    }

private:
    std::string name;
    Bytes payload;
    DWORD saveFailure;
};

Ref<IXStream> MemoryHolding(const Bytes& bytes) {
    return kt::test::StreamOf(kt::test::kSeekableStreams[0], bytes);
}

Bytes Stored(IPersistXStream* object) {
    Ref<IXStream> stream(new_StreamOnMemory());
    EXPECT_EQ(WriteObjectToXStream(stream.get(), object), 1);
    return AllBytes(stream.get());
}

Ref<IPersistXStream> ReadBack(IXStream* stream) {
    IKTUnknown* read = nullptr;
    if (!ReadObjectFromXStream(stream, &read))
        return nullptr;
    IPersistXStream* persist = nullptr;
    read->QueryInterface(typeid(IPersistXStream), reinterpret_cast<void**>(&persist));
    read->Release();
    return Ref<IPersistXStream>(persist);
}

// The code that reading an object from `stream` fails with; no object is
// handed out.
DWORD ReadFailure(IXStream* stream) {
    IKTUnknown* read = reinterpret_cast<IKTUnknown*>(&read);
    DWORD code = XE_NONE;
    try {
        ReadObjectFromXStream(stream, &read);
        ADD_FAILURE() << "an object was read";
    } catch (const CXException& failure) {
        code = failure.code;
    }
    EXPECT_EQ(read, nullptr);
    return code;
}

// The shape class of the tests' module, registered for each test.
class ObjectStreaming : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(RegisterObject(KT_TEST_SHAPE_CLASS, KT_TEST_CLASSES_FILE), 1); }
    void TearDown() override {
        UnregisterObject(KT_TEST_SHAPE_CLASS);
        UnregisterObject(KT_TEST_EMPTY_CLASS);
        UnregisterObject(KT_TEST_REFUSING_CLASS);
    }

    static Ref<ITestShape> NewShape(ULONG id, const char* label) {
        IKTUnknown* made = nullptr;
        CreateObject(KT_TEST_SHAPE_CLASS, nullptr, typeid(ITestShape), &made);
        Ref<ITestShape> shape(static_cast<ITestShape*>(made));
        if (shape) {
            shape->SetId(id);
            shape->SetLabel(label);
        }
        return shape;
    }

    // Parent 1 "outer" holding child 2 "inner".
    static Ref<ITestShape> NestedShapes() {
        Ref<ITestShape> outer = NewShape(1, "outer");
        Ref<ITestShape> inner = NewShape(2, "inner");
        if (outer && inner)
            outer->SetChild(inner.get());
        return outer;
    }
};

TEST(ObjectForm, NoObjectIsOneZeroByte) {
    EXPECT_EQ(SizeOfObject(nullptr), 1u);
    EXPECT_EQ(Stored(nullptr), Bytes{0});
    Ref<IXStream> stream = MemoryHolding({0, 0xEE});
    IKTUnknown* read = reinterpret_cast<IKTUnknown*>(&read);
    EXPECT_EQ(ReadObjectFromXStream(stream.get(), &read), 0);
    EXPECT_EQ(read, nullptr);
    EXPECT_EQ(stream->GetPosition(), 1u);
    stream->Seek(0, 0);
    EXPECT_EQ(SkipObjectToXStream(stream.get()), 0u);
    EXPECT_EQ(stream->GetPosition(), 1u);
}

TEST(ObjectForm, NameTerminatorMeasuredLengthAndPayloadAtAnyPosition) {
    CFixedPayload abc("Abc", {1, 2});
    EXPECT_EQ(SizeOfObject(&abc), 10u);
    Ref<IXStream> stream(new_StreamOnMemory());
    stream->WriteDWord(0xFFFFFFFF);
    EXPECT_EQ(WriteObjectToXStream(stream.get(), &abc), 1);
    stream->WriteByte(9);
    EXPECT_EQ(AllBytes(stream.get()),
              (Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0x41, 0x62, 0x63, 0x00, 0x02, 0x00, 0x00, 0x00, 0x01, 0x02, 9}));
    // Skipping steps over the object and answers where it began.
    stream->Seek(4, 0);
    EXPECT_EQ(SkipObjectToXStream(stream.get()), 4u);
    EXPECT_EQ(stream->ReadByte(), 9);
    // The length is what Save wrote, whatever GetSize claims.
    struct CClaimsMore final : CFixedPayload {
        using CFixedPayload::CFixedPayload;
        ULONG GetSize() override { return 1000; }
    } claimsMore("Abc", {1, 2});
    EXPECT_EQ(Stored(&claimsMore), Stored(&abc));
}

TEST(ObjectForm, WhatSaveThrowsPassesThroughAndTheLengthStaysZero) {
    CFixedPayload failing("Abc", {1, 2}, XE_DISK_FULL);
    Ref<IXStream> stream(new_StreamOnMemory());
    try {
        WriteObjectToXStream(stream.get(), &failing);
        ADD_FAILURE() << "the failure of Save was lost";
    } catch (const CXException& failure) {
        EXPECT_EQ(failure.code, XE_DISK_FULL);
    }
    EXPECT_EQ(AllBytes(stream.get()), (Bytes{'A', 'b', 'c', 0, 0, 0, 0, 0, 1, 2}));
}

TEST(ObjectForm, TruncatedFormsGiveNoObject) {
    EXPECT_EQ(ReadFailure(MemoryHolding({'A', 'b'}).get()), XE_END_OF_FILE);
    EXPECT_EQ(ReadFailure(MemoryHolding({'A', 'b', 0}).get()), XE_END_OF_FILE);
    // A part of the length word is read as a length: then the payload is short.
    EXPECT_EQ(ReadFailure(MemoryHolding({'A', 'b', 0, 1}).get()), XE_SHORT_DATA);
}

TEST_F(ObjectStreaming, AnUnknownClassOrARefusingFactoryGivesAProxyThatWritesTheSameBytes) {
    ASSERT_EQ(RegisterObject(KT_TEST_REFUSING_CLASS, KT_TEST_CLASSES_FILE), 1);
    for (const char* name : {"CLSID_NobodyKnows", KT_TEST_REFUSING_CLASS}) {
        SCOPED_TRACE(name);
        CFixedPayload unknown(name, {5, 4, 3, 2, 1});
        const Bytes bytes = Stored(&unknown);
        Ref<IXStream> stream = MemoryHolding(bytes);
        Ref<IPersistXStream> proxy = ReadBack(stream.get());
        ASSERT_NE(proxy, nullptr);
        EXPECT_STREQ(proxy->GetClassName(), name);
        EXPECT_EQ(proxy->GetSize(), 5u);
        EXPECT_EQ(proxy->QueryInterface(typeid(IPersistX), nullptr), 1);
        EXPECT_EQ(stream->GetPosition(), bytes.size());
        EXPECT_EQ(Stored(proxy.get()), bytes);
    }
}

TEST(Proxy, ALengthBeyondTheStreamIsShortData) {
    const Bytes exact = {'X', 0, 3, 0, 0, 0, 7, 8, 9};
    Ref<IPersistXStream> proxy = ReadBack(MemoryHolding(exact).get());
    ASSERT_NE(proxy, nullptr);
    Bytes longer = exact;
    longer[2] = 4;
    Ref<IXStream> stream = MemoryHolding(longer);
    EXPECT_EQ(ReadFailure(stream.get()), XE_SHORT_DATA);
    EXPECT_EQ(stream->GetPosition(), 6u);  // behind the length word
    // A proxy whose second Load is short keeps what it held.
    Ref<IXStream> two = MemoryHolding({1, 2});
    EXPECT_THROW(proxy->Load(two.get()), CXException);
    EXPECT_EQ(Stored(proxy.get()), exact);
}

TEST(Proxy, ClassNamesUpTo259CharactersPassThrough) {
    const std::string longest(259, 'L');
    CFixedPayload fits(longest, {1, 2, 3});
    const Bytes bytes = Stored(&fits);
    Ref<IPersistXStream> proxy = ReadBack(MemoryHolding(bytes).get());
    ASSERT_NE(proxy, nullptr);
    EXPECT_EQ(std::string(proxy->GetClassName()), longest);
    EXPECT_EQ(Stored(proxy.get()), bytes);

    // The line limit ends a longer name at its 260th byte: the terminator and
    // three bytes of the length word are then read as the length 0x300, more
    // than the four bytes left.
    CFixedPayload tooLong(std::string(260, 'L'), {1, 2, 3});
    Ref<IXStream> stream = MemoryHolding(Stored(&tooLong));
    EXPECT_EQ(ReadFailure(stream.get()), XE_SHORT_DATA);
    EXPECT_EQ(stream->GetPosition(), 264u);
}

TEST_F(ObjectStreaming, ARegisteredClassIsCreatedByNameAndLoaded) {
    Ref<ITestShape> outer = NestedShapes();
    ASSERT_NE(outer, nullptr);
    Ref<IXStream> stream(new_StreamOnMemory());
    WriteObjectToXStream(stream.get(), outer.get());
    EXPECT_EQ(stream->GetPosition(), SizeOfObject(outer.get()));
    stream->Seek(0, 0);
    IKTUnknown* read = nullptr;
    ASSERT_EQ(ReadObjectFromXStream(stream.get(), &read), 1);
    ITestShape* shape = nullptr;
    ASSERT_EQ(read->QueryInterface(typeid(ITestShape), reinterpret_cast<void**>(&shape)), 1);
    read->Release();
    Ref<ITestShape> copy(shape);
    EXPECT_NE(copy.get(), outer.get());
    EXPECT_EQ(copy->GetLoadCount(), 1);
    EXPECT_EQ(copy->GetId(), 1u);
    EXPECT_STREQ(copy->GetLabel(), "outer");
    Ref<ITestShape> child(copy->GetChild());
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->GetId(), 2u);
    EXPECT_STREQ(child->GetLabel(), "inner");
    EXPECT_EQ(stream->GetPosition(), stream->GetLength());
}

TEST_F(ObjectStreaming, AnEmptyPayloadIsStoredAsALengthOfZeroAndStillLoaded) {
    ASSERT_EQ(RegisterObject(KT_TEST_EMPTY_CLASS, KT_TEST_CLASSES_FILE), 1);
    IKTUnknown* made = nullptr;
    ASSERT_EQ(CreateObject(KT_TEST_EMPTY_CLASS, nullptr, typeid(IPersistXStream), &made), 1);
    Ref<IPersistXStream> empty(static_cast<IPersistXStream*>(made));
    Bytes bytes = Stored(empty.get());
    Bytes expected(KT_TEST_EMPTY_CLASS, KT_TEST_EMPTY_CLASS + sizeof KT_TEST_EMPTY_CLASS);
    expected.insert(expected.end(), {0, 0, 0, 0});
    EXPECT_EQ(bytes, expected);

    bytes.push_back(0x77);
    Ref<IXStream> stream = MemoryHolding(bytes);
    Ref<IPersistXStream> read = ReadBack(stream.get());
    ASSERT_NE(read, nullptr);
    ITestShape* shape = nullptr;
    ASSERT_EQ(read->QueryInterface(typeid(ITestShape), reinterpret_cast<void**>(&shape)), 1);
    EXPECT_EQ(shape->GetLoadCount(), 1);
    shape->Release();
    EXPECT_EQ(stream->ReadByte(), 0x77);
}

TEST_F(ObjectStreaming, AnObjectVariantPassesThroughAProcessThatNeverHeardOfItsClass) {
    Ref<ITestShape> outer = NestedShapes();
    ASSERT_NE(outer, nullptr);
    const CKTVariant value(static_cast<IKTUnknown*>(outer.get()));
    Ref<IXStream> stream(new_StreamOnMemory());
    stream->WriteVariant(&value);
    const Bytes bytes = AllBytes(stream.get());
    kt::test::ScratchDirectory scratch;
    const kt::test::WideString in = scratch / KTW("in.bin"), out = scratch / KTW("out.bin");
    kt::test::WriteContent(in, std::string(bytes.begin(), bytes.end()));
    ASSERT_EQ(kt::test::RunTestHelper("pass-through", in, out), 0);
    const std::string passed = kt::test::ContentOf(out);
    EXPECT_EQ(Bytes(passed.begin(), passed.end()), bytes);
}

TEST_F(ObjectStreaming, AnOleBackedStreamCarriesObjectsToo) {
    Ref<ITestShape> outer = NestedShapes();
    ASSERT_NE(outer, nullptr);
    Ref<IXStream> stream(kt::test::NewOleBackedStream());
    WriteObjectToXStream(stream.get(), outer.get());
    EXPECT_EQ(AllBytes(stream.get()), Stored(outer.get()));
    stream->Seek(0, 0);
    Ref<IPersistXStream> read = ReadBack(stream.get());
    ASSERT_NE(read, nullptr);
    EXPECT_STREQ(read->GetClassName(), KT_TEST_SHAPE_CLASS);
}

}  // namespace
