// Documents that can be stopped: every stream call of a document asks the
// host's sink, and a stop comes out of the call that asked, having done what
// that call promises. Sub-storages and streams lead back to the document and
// its sink, and a reverted transaction leaves the old document on disk.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "kticore/params/Param.h"
#include "kticore/storage/DocStorage.h"
#include "tests/storage/StorageSupport.h"

namespace {

using kt::test::Answer;
using kt::test::CCounted;
using kt::test::Names;
using kt::test::ReadText;
using kt::test::Ref;
using kt::test::ScratchDirectory;
using kt::test::StorageRef;
using kt::test::WideString;

// The host's sink: from its `stopAt`-th question on it says stop (never with
// 0). It counts questions, ranges and references.
struct StoppingSink final : KTIFC::IProgress {
    explicit StoppingSink(int stopAt = 0) : stopAt(stopAt) {}
    ULONG AddRef() override { return ++refs; }
    ULONG Release() override { return --refs; }
    int QueryInterface(const type_info& wanted, void** out) override {
        const bool found = wanted == typeid(KTIFC::IProgress);
        if (out != nullptr && (*out = found ? this : nullptr) != nullptr)
            AddRef();
        return found;
    }
    int IsCancelled() override { return ++questions >= stopAt && stopAt != 0; }
    void SetRange(int low, int high) override { ranges.push_back({low, high}); }

    int stopAt;
    int questions = 0;
    ULONG refs = 1;
    std::vector<std::pair<int, int>> ranges;
};

// What `info` gives through `get`, with its reference.
template <class I>
Ref<I> Given(IDocStrorageInfo* info, int (IDocStrorageInfo::*get)(I**)) {
    I* object = nullptr;
    EXPECT_EQ((info->*get)(&object), 1);
    return Ref<I>(object);
}

StorageRef DocumentOver(IXStorage* storage, StoppingSink& sink, int flags = 0) {
    IXStorage* document = nullptr;
    EXPECT_EQ(new_CIXDocStorage(storage, &sink, &document, flags), 1);
    return StorageRef(document);
}

// One stream call of a save: whether it asks the sink, and whether it has
// been done when the sink stops it.
struct Call {
    bool asks;
    bool doneWhenStopped;
    void (*run)(IXStream*);
};

const CKTVariant kStoredText("abc");

// Reads go into scratch buffers that live as long as the call.
const Call kStreamCalls[] = {
    {true, false, [](IXStream* s) { s->WriteDWord(7); }},
    {true, false, [](IXStream* s) { s->WriteString("title"); }},
    {true, true, [](IXStream* s) { s->Write("sixteen bytes...", 16); }},
    {true, false, [](IXStream* s) { s->WriteVariant(&kStoredText); }},
    {true, false, [](IXStream* s) { s->WriteWord(2); }},
    {true, false, [](IXStream* s) { s->WriteByte(1); }},
    {true, false, [](IXStream* s) { s->WriteDouble(0.5); }},
    {true, false, [](IXStream* s) { s->WriteStringW(KTW("ab")); }},
    {false, false, [](IXStream* s) { s->GetPosition(); }},
    {false, false, [](IXStream* s) { s->GetLength(); }},
    {false, false, [](IXStream* s) { s->GetName(); }},
    {true, true, [](IXStream* s) { s->Seek(0, 0); }},
    {true, true, [](IXStream* s) { s->ReadDWord(); }},
    {true, true, [](IXStream* s) { s->ReadLine(std::string(16, '\0').data(), 14); }},
    {true, true, [](IXStream* s) { s->Read(std::string(16, '\0').data(), 16); }},
    {true, true, [](IXStream* s) { s->ReadVariant(std::make_unique<CKTVariant>().get()); }},
    {true, true, [](IXStream* s) { s->ReadWord(); }},
    {true, true, [](IXStream* s) { s->ReadByte(); }},
    {true, true, [](IXStream* s) { s->ReadDouble(); }},
    {true, true, [](IXStream* s) { s->ReadLineW(std::basic_string<KTWCHAR>(8, 0).data(), 6); }},
};
constexpr int kDocumentStreams = 3;

// Where a save stopped: the calls that asked the sink, counted as they
// start, and the position of the stream whose call was stopped.
struct Stop {
    int asking = 0;
    unsigned position = 0;
};

// Saves a document as a host does, knowing nothing of the sink: a stream at
// the top, one in a sub-storage and one below that. On a plain storage a
// `plainStopAt` other than 0 plays a sink that stops at that question: the
// call that asked it runs only if a stopped call is done, then the save stops.
void SaveDocument(IXStorage* top, Stop& stop, int plainStopAt = 0) {
    const auto fill = [&](IXStorage* storage, const char* name) {
        Ref<IXStream> stream(storage->CreateStream(name));
        try {
            for (const Call& call : kStreamCalls) {
                stop.asking += call.asks;
                const bool stopsHere = call.asks && stop.asking == plainStopAt;
                if (!stopsHere || call.doneWhenStopped)
                    call.run(stream.get());
                if (stopsHere)
                    throw CXException(XE_CANCELLED);
            }
        } catch (const CXException&) {
            stop.position = stream->GetPosition();
            throw;
        }
    };
    fill(top, "header");
    StorageRef pages(top->CreateStorage("pages"));
    fill(pages.get(), "page");
    StorageRef figures(pages->CreateStorage("figures"));
    fill(figures.get(), "figure");
}

int QuestionsOfASave() {
    const auto asks = [](const Call& call) { return call.asks; };
    return kDocumentStreams *
           static_cast<int>(std::count_if(std::begin(kStreamCalls), std::end(kStreamCalls), asks));
}

// Every stream by its path, with its content.
using Contents = std::map<std::string, std::string>;
Contents ContentsOf(IXStorage* storage, const std::string& prefix = "") {
    Contents contents;
    for (const std::string& name : Names(storage->EnumStreams()))
        contents[prefix + name] = ReadText(storage, name.c_str());
    for (const std::string& name : Names(storage->EnumStorages()))
        contents.merge(
            ContentsOf(StorageRef(storage->OpenStorage(name.c_str())).get(), prefix + name + "/"));
    return contents;
}
// Saves with a sink that stops at `stopAt` (0: never). The stop must come out
// of the call that asked last.
Stop StoppedSave(IXStorage* storage, int stopAt) {
    StoppingSink sink(stopAt);
    Stop stop;
    try {
        SaveDocument(DocumentOver(storage, sink).get(), stop);
    } catch (const CXException& cancel) {
        EXPECT_EQ(cancel.code, XE_CANCELLED);
    }
    EXPECT_EQ(stop.asking, sink.questions)
        << "the stop came from another call than the one that asked";
    EXPECT_EQ(sink.refs, 1u) << "the document let its sink go";
    return stop;
}

// A stopped call leaves its stream as the call would on a plain storage:
// reads, Write and Seek done, typed writes not.
TEST(DocumentStorage, EveryStopComesFromTheCallThatAskedWithWhatThatCallPromised) {
    for (int stopAt = 1; stopAt <= QuestionsOfASave() + 1; ++stopAt) {
        SCOPED_TRACE("stop at question " + std::to_string(stopAt));
        StorageRef storage(new_Storage(nullptr, 0)), plain(new_Storage(nullptr, 0));
        const Stop stopped = StoppedSave(storage.get(), stopAt);
        Stop expected;
        try {
            SaveDocument(plain.get(), expected, stopAt);
        } catch (const CXException&) {
        }
        EXPECT_EQ(stopped.asking, expected.asking);
        EXPECT_EQ(stopped.position, expected.position);
        EXPECT_EQ(ContentsOf(storage.get()), ContentsOf(plain.get()));
    }
}

// Nothing is undone: a host that reverts its transacted storage after a stop
// keeps the old document on disk, wherever the save stopped.
TEST(DocumentStorage, AStoppedSaveRevertedLeavesTheOldDocumentOnDisk) {
    ScratchDirectory directory;
    const WideString path = directory / KTW("document.stg");
    {
        StorageRef old(new_Storage(path.c_str(), 0));
        kt::test::WriteText(StorageRef(old->CreateStorage("pages")).get(), "page", "old page");
    }
    const auto onDisk = [&] { return ContentsOf(StorageRef(open_Storage(path.c_str(), 1)).get()); };
    const Contents oldDocument = onDisk();
    const int stopInTheTopStream = 3, stopInTheDeepestStream = QuestionsOfASave();
    for (int stopAt : {stopInTheTopStream, stopInTheDeepestStream}) {
        SCOPED_TRACE("stop at question " + std::to_string(stopAt));
        StorageRef storage(open_Storage(path.c_str(), 0));
        StoppedSave(storage.get(), stopAt);
        static_cast<CStorage*>(storage.get())->Revert();
        storage.reset();
        EXPECT_EQ(onDisk(), oldDocument);
    }
    StoppedSave(StorageRef(open_Storage(path.c_str(), 0)).get(), 0);
    EXPECT_EQ(onDisk().count("pages/figures/figure"), 1u);  // the same path does keep a save
}

// A stop is no state of the document: the next call goes on.
TEST(DocumentStorage, AStoppedStreamStaysUsable) {
    StorageRef storage(new_Storage(nullptr, 0));
    StoppingSink sink(1);
    Ref<IXStream> stream(DocumentOver(storage.get(), sink)->CreateStream("s"));
    EXPECT_THROW(stream->WriteByte('x'), CXException);
    sink.stopAt = 0;
    stream->WriteByte('y');
    EXPECT_EQ(stream->Seek(0, 0), 0u);
    EXPECT_EQ(stream->ReadByte(), 'y');
}

TEST(DocumentStorage, AStreamDeepDownLeadsBackToTheTopDocumentAndItsSink) {
    StorageRef storage(new_Storage(nullptr, 0));
    StoppingSink sink;
    constexpr int kFlags = 0x5A;
    StorageRef document = DocumentOver(storage.get(), sink, kFlags);
    StorageRef pages(document->CreateStorage("pages"));
    StorageRef figures(pages->CreateStorage("figures"));
    Ref<IXStream> stream(figures->CreateStream("figure"));
    EXPECT_EQ(sink.ranges, (std::vector<std::pair<int, int>>{{0, 100}}));
    EXPECT_EQ(document->GetName(), storage->GetName());
    EXPECT_EQ(figures->OpenStream("missing"), nullptr);
    EXPECT_THROW(figures->OpenStorage("missing"), CXFileException);

    Ref<IDocStrorageInfo> info = Answer<IDocStrorageInfo>(stream.get());
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(Given(info.get(), &IDocStrorageInfo::GetDocStorage).get(), document.get());
    EXPECT_EQ(Given(info.get(), &IDocStrorageInfo::GetBaseStorage).get(), storage.get());
    Ref<IXStream> baseStream = Given(info.get(), &IDocStrorageInfo::GetBaseStream);
    EXPECT_STREQ(baseStream->GetName(), "figure");
    EXPECT_EQ(baseStream->QueryInterface(typeid(IDocStrorageInfo), nullptr), 0);
    EXPECT_EQ(info->GetFlags(), kFlags);

    // The queries of a document stream, in the order it answers them. What
    // is attached to it goes with it.
    Ref<CCounted> attached(new CCounted);
    Ref<IRegisterIface> table = Answer<IRegisterIface>(stream.get());
    EXPECT_EQ(table->RegisterInterface(attached.get(), typeid(IParam), 1), 1);
    struct Query {
        const type_info& type;
        const void* answer;  // null: a miss
    };
    const Query queries[] = {
        {typeid(IKTUnknown), static_cast<IXStream*>(stream.get())},
        {typeid(IXStream), stream.get()},
        {typeid(IXStorage), document.get()},
        {typeid(KTIFC::IProgress), &sink},
        {typeid(IParam), attached.get()},
        {typeid(IMemBlock), nullptr},
    };
    for (const Query& query : queries) {
        SCOPED_TRACE(query.type.name());
        void* answer = &table;
        EXPECT_EQ(stream->QueryInterface(query.type, &answer), query.answer != nullptr);
        EXPECT_EQ(answer, query.answer);
        if (answer != nullptr)
            static_cast<IKTUnknown*>(answer)->Release();
        EXPECT_EQ(stream->QueryInterface(query.type, nullptr), query.answer != nullptr);
    }
    EXPECT_EQ(stream->QueryInterface(typeid(IDocStrorageInfo), nullptr), 1);
    EXPECT_EQ(attached->References(), 2u);

    // The stream holds its document: with the host's references to the
    // document gone it still asks the one sink. (The platform's stream needs
    // its own storage open.)
    info.reset();
    table.reset();
    baseStream.reset();
    document.reset();
    pages.reset();
    stream->WriteByte(1);
    EXPECT_EQ(sink.questions, 1);
    stream.reset();
    figures.reset();
    EXPECT_EQ(sink.refs, 1u);
    EXPECT_EQ(attached->References(), 1u);
}

TEST(DocumentStorage, AStreamMadeOverAnyDocumentStorageAsksItsSink) {
    StorageRef storage(new_Storage(nullptr, 0));
    StoppingSink sink;
    StorageRef document = DocumentOver(storage.get(), sink, 3);
    StorageRef pages(document->CreateStorage("pages"));
    Ref<IXStream> plain(storage->CreateStream("plain"));
    IXStream* made = nullptr;
    EXPECT_EQ(new_CIXDocStream(pages.get(), plain.get(), &made, 9), 1);
    Ref<IXStream> stream(made);
    stream->WriteDWord(1);
    EXPECT_EQ(sink.questions, 1);
    Ref<IDocStrorageInfo> info = Answer<IDocStrorageInfo>(stream.get());
    EXPECT_EQ(Given(info.get(), &IDocStrorageInfo::GetDocStorage).get(), pages.get());
    EXPECT_EQ(info->GetFlags(), 9);

    // Bad arguments are refused, not taken on trust.
    IXStorage* other = nullptr;
    EXPECT_THROW(new_CIXDocStorage(nullptr, &sink, &other, 0), CXIFaceException);
    EXPECT_THROW(new_CIXDocStorage(storage.get(), nullptr, &other, 0), CXIFaceException);
    EXPECT_THROW(new_CIXDocStream(storage.get(), plain.get(), &made, 0), CXIFaceException);
    EXPECT_THROW(new_CIXDocStream(document.get(), nullptr, &made, 0), CXIFaceException);
    EXPECT_THROW(info->GetBaseStream(nullptr), CXException);
    EXPECT_EQ(sink.ranges.size(), 1u);
}

}  // namespace
