// Documents that can be stopped: every stream call of a document asks the
// host's sink, and a stop comes out of the call that asked, having done what
// that call promises. Sub-storages and streams lead back to the document and
// its sink, and a reverted transaction leaves the old document on disk.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "kticore/params/Param.h"
#include "kticore/storage/DocStorage.h"
#include "tests/storage/StorageSupport.h"

namespace {

using kt::test::CCounted;
using kt::test::Names;
using kt::test::ReadText;
using kt::test::Ref;
using kt::test::ScratchDirectory;
using kt::test::StorageRef;
using kt::test::WideString;

// The host's sink: from its `stopAt`-th question on it says stop (never with
// 0). It counts questions, ranges and references.
class StoppingSink final : public KTIFC::IProgress {
public:
    explicit StoppingSink(int stopAt = 0) : stopAt(stopAt) {}
    ULONG AddRef() override { return ++refs; }
    ULONG Release() override { return --refs; }
    int QueryInterface(const type_info& wanted, void** out) override {
        const bool found = wanted == typeid(KTIFC::IProgress);
        if (out != nullptr)
            *out = found ? this : nullptr;
        if (found && out != nullptr)
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

StorageRef DocumentOver(IXStorage* storage, StoppingSink& sink, int flags = 0) {
    IXStorage* document = nullptr;
    EXPECT_EQ(new_CIXDocStorage(storage, &sink, &document, flags), 1);
    return StorageRef(document);
}

// One stream call of a save: whether it asks the sink, the bytes it adds,
// and whether they are in the stream when the sink stops the call.
struct Call {
    const char* name;
    bool asks;
    unsigned bytes;
    bool doneWhenStopped;
    void (*run)(IXStream*);
};

const Call kStreamCalls[] = {
    {"WriteDWord", true, 4, false, [](IXStream* s) { s->WriteDWord(7); }},
    {"WriteString", true, 6, false, [](IXStream* s) { s->WriteString("title"); }},
    {"Write", true, 16, true, [](IXStream* s) { s->Write("sixteen bytes...", 16); }},
    {"WriteVariant", true, 10, false,
     [](IXStream* s) {
         const CKTVariant text("abc");
         s->WriteVariant(&text);
     }},
    {"WriteWord", true, 2, false, [](IXStream* s) { s->WriteWord(2); }},
    {"WriteByte", true, 1, false, [](IXStream* s) { s->WriteByte(1); }},
    {"WriteDouble", true, 8, false, [](IXStream* s) { s->WriteDouble(0.5); }},
    {"WriteStringW", true, 6, false, [](IXStream* s) { s->WriteStringW(KTW("ab")); }},
    {"GetPosition", false, 0, false, [](IXStream* s) { s->GetPosition(); }},
    {"GetLength", false, 0, false, [](IXStream* s) { s->GetLength(); }},
    {"GetName", false, 0, false, [](IXStream* s) { s->GetName(); }},
    {"Seek", true, 0, true, [](IXStream* s) { s->Seek(0, 0); }},
    {"ReadDWord", true, 0, true, [](IXStream* s) { s->ReadDWord(); }},
    {"ReadLine", true, 0, true,
     [](IXStream* s) {
         char line[16];
         s->ReadLine(line, 14);
     }},
    {"Read", true, 0, true,
     [](IXStream* s) {
         char bytes[16];
         s->Read(bytes, sizeof bytes);
     }},
    {"ReadVariant", true, 0, true,
     [](IXStream* s) {
         CKTVariant read;
         s->ReadVariant(&read);
     }},
    {"ReadWord", true, 0, true, [](IXStream* s) { s->ReadWord(); }},
    {"ReadByte", true, 0, true, [](IXStream* s) { s->ReadByte(); }},
    {"ReadDouble", true, 0, true, [](IXStream* s) { s->ReadDouble(); }},
    {"ReadLineW", true, 0, true,
     [](IXStream* s) {
         KTWCHAR line[8];
         s->ReadLineW(line, 6);
     }},
};
constexpr int kDocumentStreams = 3;

// Saves a document as a host does, knowing nothing of the sink: a stream at
// the top, one in a sub-storage and one below that. `asking` counts the calls
// that ask the sink, as they start.
void SaveDocument(IXStorage* document, int& asking) {
    const auto fill = [&](IXStorage* storage, const char* name) {
        Ref<IXStream> stream(storage->CreateStream(name));
        for (const Call& call : kStreamCalls) {
            asking += call.asks;
            call.run(stream.get());
        }
    };
    fill(document, "header");
    StorageRef pages(document->CreateStorage("pages"));
    fill(pages.get(), "page");
    StorageRef figures(pages->CreateStorage("figures"));
    fill(figures.get(), "figure");
}

int QuestionsOfASave() {
    int questions = 0;
    for (const Call& call : kStreamCalls)
        questions += call.asks;
    return questions * kDocumentStreams;
}

// The bytes of a save that the sink stops at its `stopAt`-th question.
unsigned BytesSavedUntil(int stopAt) {
    unsigned bytes = 0;
    int questions = 0;
    for (int stream = 0; stream < kDocumentStreams; ++stream) {
        for (const Call& call : kStreamCalls) {
            questions += call.asks;
            if (questions == stopAt && call.asks)
                return bytes + (call.doneWhenStopped ? call.bytes : 0);
            bytes += call.bytes;
        }
    }
    return bytes;
}

// Every stream by its path, with its content.
using Contents = std::map<std::string, std::string>;
void Collect(IXStorage* storage, const std::string& prefix, Contents& contents) {
    for (const std::string& name : Names(storage->EnumStreams()))
        contents[prefix + name] = ReadText(storage, name.c_str());
    for (const std::string& name : Names(storage->EnumStorages()))
        Collect(StorageRef(storage->OpenStorage(name.c_str())).get(), prefix + name + "/",
                contents);
}
Contents ContentsOf(IXStorage* storage) {
    Contents contents;
    Collect(storage, "", contents);
    return contents;
}
unsigned BytesIn(const Contents& contents) {
    unsigned bytes = 0;
    for (const auto& stream : contents)
        bytes += static_cast<unsigned>(stream.second.size());
    return bytes;
}

// Saves with a sink that stops at `stopAt`; the questions the sink was asked
// before the stop came out of a stream call, which must be the call that
// asked last. 0 when the save ran through.
int StoppedSave(IXStorage* storage, int stopAt) {
    StoppingSink sink(stopAt);
    int asking = 0;
    {
        StorageRef document = DocumentOver(storage, sink);
        try {
            SaveDocument(document.get(), asking);
        } catch (const CXException& stop) {
            EXPECT_EQ(stop.code, XE_CANCELLED);
            EXPECT_EQ(asking, sink.questions)
                << "the stop came from another call than the one that asked";
        }
    }
    EXPECT_EQ(sink.refs, 1u) << "the document let its sink go";
    return sink.questions;
}

TEST(DocumentStorage, EveryStopComesFromTheCallThatAskedWithWhatThatCallPromised) {
    const int total = QuestionsOfASave();
    for (int stopAt = 1; stopAt <= total + 1; ++stopAt) {
        SCOPED_TRACE("stop at question " + std::to_string(stopAt));
        StorageRef storage(new_Storage(nullptr, 0));
        EXPECT_EQ(StoppedSave(storage.get(), stopAt), std::min(stopAt, total));
        EXPECT_EQ(BytesIn(ContentsOf(storage.get())), BytesSavedUntil(stopAt));
    }
}

TEST(DocumentStorage, AStoppedSaveRevertedLeavesTheOldDocumentOnDisk) {
    ScratchDirectory directory;
    const WideString path = directory / KTW("document.stg");
    {
        StorageRef old(new_Storage(path.c_str(), 0));
        kt::test::WriteText(old.get(), "header", "old header");
        kt::test::WriteText(StorageRef(old->CreateStorage("pages")).get(), "page", "old page");
    }
    const Contents oldDocument = ContentsOf(StorageRef(open_Storage(path.c_str(), 1)).get());
    const int total = QuestionsOfASave();
    for (int stopAt = 1; stopAt <= total; ++stopAt) {
        SCOPED_TRACE("stop at question " + std::to_string(stopAt));
        {
            StorageRef storage(open_Storage(path.c_str(), 0));
            StoppedSave(storage.get(), stopAt);
            static_cast<CStorage*>(storage.get())->Revert();
        }
        EXPECT_EQ(ContentsOf(StorageRef(open_Storage(path.c_str(), 1)).get()), oldDocument);
    }
    {
        StorageRef storage(open_Storage(path.c_str(), 0));
        EXPECT_EQ(StoppedSave(storage.get(), 0), total);
    }
    const Contents saved = ContentsOf(StorageRef(open_Storage(path.c_str(), 1)).get());
    EXPECT_EQ(BytesIn(saved), BytesSavedUntil(0));
    EXPECT_EQ(saved.count("pages/figures/figure"), 1u);
}

TEST(DocumentStorage, AStoppedStreamStaysUsable) {
    StorageRef storage(new_Storage(nullptr, 0));
    kt::test::WriteText(storage.get(), "s", "abcd");
    StoppingSink sink(1);
    StorageRef document = DocumentOver(storage.get(), sink);
    Ref<IXStream> stream(document->OpenStream("s"));
    char bytes[2];
    EXPECT_THROW(stream->Read(bytes, 2), CXException);  // the read has happened
    EXPECT_EQ(stream->GetPosition(), 2u);
    EXPECT_THROW(stream->WriteByte('x'), CXException);  // the write has not
    EXPECT_EQ(stream->GetLength(), 4u);
    EXPECT_EQ(sink.questions, 2);
    sink.stopAt = 0;
    EXPECT_EQ(stream->Seek(0, 2), 4u);
    stream->WriteByte('x');
    EXPECT_EQ(stream->GetLength(), 5u);
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

    void* found = nullptr;
    ASSERT_EQ(stream->QueryInterface(typeid(IDocStrorageInfo), &found), 1);
    Ref<IDocStrorageInfo> info(static_cast<IDocStrorageInfo*>(found));
    IXStorage* docStorage = nullptr;
    IXStorage* baseStorage = nullptr;
    IXStream* baseStream = nullptr;
    EXPECT_EQ(info->GetDocStorage(&docStorage), 1);
    EXPECT_EQ(info->GetBaseStorage(&baseStorage), 1);
    EXPECT_EQ(info->GetBaseStream(&baseStream), 1);
    EXPECT_EQ(docStorage, document.get());
    EXPECT_EQ(baseStorage, storage.get());
    EXPECT_STREQ(baseStream->GetName(), "figure");
    EXPECT_EQ(baseStream->QueryInterface(typeid(IDocStrorageInfo), nullptr), 0);
    for (IKTUnknown* given :
         std::initializer_list<IKTUnknown*>{docStorage, baseStorage, baseStream})
        given->Release();
    EXPECT_EQ(info->GetFlags(), kFlags);
    EXPECT_EQ(info->SetDocStorage() + info->SetBaseStorage() + info->SetBaseStream(), 0);

    // The queries of a document stream, in the order it answers them.
    Ref<CCounted> attached(new CCounted);
    EXPECT_EQ(Ref<IRegisterIface>([&] {
                  void* registry = nullptr;
                  stream->QueryInterface(typeid(IRegisterIface), &registry);
                  return static_cast<IRegisterIface*>(registry);
              }())
                  ->RegisterInterface(attached.get(), typeid(IParam), 1),
              1);
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
        void* answer = &found;
        EXPECT_EQ(stream->QueryInterface(query.type, &answer), query.answer != nullptr);
        EXPECT_EQ(answer, query.answer);
        if (answer != nullptr)
            static_cast<IKTUnknown*>(answer)->Release();
        EXPECT_EQ(stream->QueryInterface(query.type, nullptr), query.answer != nullptr);
    }
    EXPECT_EQ(stream->QueryInterface(typeid(IDocStrorageInfo), nullptr), 1);
    EXPECT_EQ(attached->References(), 2u);
    void* fromDocument = nullptr;
    EXPECT_EQ(document->QueryInterface(typeid(KTIFC::IProgress), &fromDocument), 1);
    EXPECT_EQ(fromDocument, &sink);
    sink.Release();
    EXPECT_EQ(document->QueryInterface(typeid(IParam), &fromDocument), 0);

    // The stream holds its document: with the host's references to the
    // document gone it still asks the one sink. (The platform's stream needs
    // its own storage open.)
    info.reset();
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
    Ref<IDocStrorageInfo> info([&] {
        void* found = nullptr;
        stream->QueryInterface(typeid(IDocStrorageInfo), &found);
        return static_cast<IDocStrorageInfo*>(found);
    }());
    IXStorage* named = nullptr;
    info->GetDocStorage(&named);
    EXPECT_EQ(named, pages.get());
    named->Release();
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
