// The service container as a host makes it, by name through the registry:
// standing alone and aggregated into an object of the test's own. Services
// count their references, so a leak or a double release fails a check.
// Single-letter names lie in the table in alphabetical order.
#include "kticore/objects/ServiceContainer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kticore/core/Exception.h"
#include "kticore/objects/Registry.h"
#include "tests/support/Counted.h"

namespace {

using kt::test::Answer;
using kt::test::CCounted;
using kt::test::Ref;
using Log = std::vector<std::string>;

constexpr char kClassName[] = "CLSID_OFSERVICECONTAINER";

// An object's count now, through its own counting.
ULONG References(IKTUnknown* object) {
    object->AddRef();
    return object->Release();
}

Ref<IKTServiceContainer> NewContainer() {
    IKTUnknown* made = nullptr;
    EXPECT_EQ(CreateObject(kClassName, nullptr, typeid(IKTServiceContainer), &made), 1);
    return Ref<IKTServiceContainer>(static_cast<IKTServiceContainer*>(made));
}

// A service that is told when it enters and leaves a container. Each notice
// goes to the log with the service's own count then, and the names in the
// table as the pointer the notice brought shows them, or "unreachable" when
// it leads nowhere. The pointer is kept, to reach siblings later.
class CSinkService : public CKTUnknownImpl<IKTServiceSink> {
public:
    CSinkService(const char* name, Log& log) : name(name), log(log) {}

    int OnServiceAdded(IKTUnknown* from) override { return Note("added", from); }
    int OnServiceRemoved(IKTUnknown* from) override { return Note("removed", from); }

    int QueryInterface(const type_info& wanted, void** out) override {
        if (failQueries)
            throw CXException(XE_GENERIC);
        return CKTUnknownImpl::QueryInterface(wanted, out);
    }

    ULONG References() const { return refs; }

    const char* name;
    IKTUnknown* container = nullptr;
    bool failNotices = false;
    bool failQueries = false;

private:
    int Note(const char* notice, IKTUnknown* from) {
        container = from;
        std::string line = std::string(notice) + " " + name + " (" + std::to_string(refs) + "):";
        if (const Ref<IKTServiceContainer> reached = Answer<IKTServiceContainer>(from)) {
            CTEnum<const char*>* made = nullptr;
            reached->EnumServiceNames(&made);
            const Ref<CTEnum<const char*>> names(made);
            for (const char* listed = nullptr; names->Next(1, &listed, nullptr);)
                line = line + " " + listed;
        } else {
            line += " unreachable";
        }
        log.push_back(line);
        if (failNotices)
            throw CXException(XE_GENERIC);
        return 0;
    }

    Log& log;
};

// A host's object that aggregates a container: it keeps the inner object and
// answers IKTServiceContainer through it.
class CHostObject : public CKTUnknownImpl<IKTUnknown> {
public:
    CHostObject() { EXPECT_EQ(CreateObject(kClassName, this, typeid(IKTUnknown), &inner), 1); }
    ~CHostObject() override { inner->Release(); }
    int QueryInterface(const type_info& wanted, void** out) override {
        return InternalQueryInterface(wanted, out) ||
               (wanted == typeid(IKTServiceContainer) && inner->QueryInterface(wanted, out));
    }
    IKTUnknown* inner = nullptr;
};

TEST(ServiceContainer, SinksAreToldWithTheTableAsEachWayOfRemovalLeavesIt) {
    Log log;
    const Ref<CSinkService> a(new CSinkService("a", log));
    const Ref<CSinkService> b(new CSinkService("b", log));
    Ref<IKTServiceContainer> container = NewContainer();
    container->AddService("a", a.get());
    container->AddService("b", b.get());
    container->RemoveAllServices();
    // Emptied, the container takes services again. One that only the
    // container holds lives until it has been told of its removal.
    container->AddService("c", Ref<CSinkService>(new CSinkService("c", log)).get());
    container->AddService("a", a.get());
    EXPECT_EQ(container->RemoveService("c"), 1);
    container->AddService("b", b.get());
    // Destroyed, the container tells every sink, without a way back to it,
    // before it releases any service.
    container.reset();
    EXPECT_EQ(log, (Log{"added a (3): a", "added b (3): a b", "removed a (3): a b", "removed b (3): a b",
                        "added c (3): c", "added a (3): a c", "removed c (2): a", "added b (3): a b",
                        "removed a (3): unreachable", "removed b (3): unreachable"}));
    EXPECT_EQ(a->References(), 1u);
    EXPECT_EQ(b->References(), 1u);
}

enum class Op { Next, Skip, Reset };
struct Step {
    Op op;
    ULONG count;
    int result;
    Log items;  // what Next gives
};

// Plays `script` on `walk`; `nameOf` names an item that Next gave, and
// releases it if it is counted.
template <class T, class NameOf>
void Play(CTEnum<T>* walk, const std::vector<Step>& script, NameOf nameOf) {
    for (size_t at = 0; at < script.size(); ++at) {
        SCOPED_TRACE(testing::Message() << "step " << at);
        const Step& step = script[at];
        if (step.op == Op::Reset) {
            walk->Reset();
            continue;
        }
        if (step.op == Op::Skip) {
            EXPECT_EQ(walk->Skip(step.count), step.result);
            continue;
        }
        std::vector<T> items(step.count + 1);
        ULONG fetched = 99;
        EXPECT_EQ(walk->Next(step.count, items.data(), &fetched), step.result);
        ASSERT_LE(fetched, step.count);
        Log names;
        for (ULONG i = 0; i < fetched; ++i)
            names.push_back(nameOf(items[i]));
        EXPECT_EQ(names, step.items);
    }
}

TEST(ServiceContainer, EnumeratorsWalkBucketsUpwardNewestFirstAndBeginAgainAfterTheEnd) {
    Log log;
    // "a" and "0P" hash to bucket 97 of 127, "b" to 98.
    const Ref<CSinkService> b(new CSinkService("b", log));
    const Ref<CCounted> a(new CCounted);
    const Ref<CSinkService> zeroP(new CSinkService("0P", log));
    const Ref<IKTServiceContainer> container = NewContainer();
    container->AddService("b", b.get());
    container->AddService("a", a.get());
    container->AddService("0P", zeroP.get());
    EXPECT_EQ(container->EnumServiceNames(nullptr), 1);
    EXPECT_EQ(container->EnumServices(typeid(IKTUnknown), nullptr), 1);

    CTEnum<const char*>* names = nullptr;
    ASSERT_EQ(container->EnumServiceNames(&names), 1);
    Play(Ref<CTEnum<const char*>>(names).get(),
         {{Op::Next, 3, 1, {"0P", "a", "b"}}, {Op::Next, 1, 0, {}}, {Op::Next, 1, 1, {"0P"}},
          {Op::Skip, 1, 1, {}}, {Op::Reset, 0, 0, {}}, {Op::Next, 2, 1, {"0P", "a"}},
          {Op::Next, 2, 1, {"b"}}, {Op::Skip, 1, 1, {}}, {Op::Skip, 0, 0, {}},
          {Op::Next, 0, 0, {}}, {Op::Skip, 5, 1, {}}, {Op::Next, 1, 1, {"0P"}}},
         [](const char* name) { return std::string(name); });

    // Only the sinks answer: "a" is passed over by Next, and ends a Skip.
    const auto sinkName = [](IKTUnknown* item) {
        const std::string name = static_cast<CSinkService*>(static_cast<IKTServiceSink*>(item))->name;
        item->Release();
        return name;
    };
    CTEnum<IKTUnknown*>* sinks = nullptr;
    ASSERT_EQ(container->EnumServices(typeid(IKTServiceSink), &sinks), 1);
    Play(Ref<CTEnum<IKTUnknown*>>(sinks).get(),
         {{Op::Next, 3, 1, {"0P", "b"}}, {Op::Next, 1, 1, {"0P"}}, {Op::Reset, 0, 0, {}},
          {Op::Skip, 2, 1, {}}, {Op::Next, 1, 1, {"b"}}, {Op::Next, 1, 0, {}},
          {Op::Next, 1, 1, {"0P"}}, {Op::Skip, 1, 0, {}}, {Op::Next, 0, 0, {}},
          {Op::Skip, 0, 0, {}}},
         sinkName);

    EXPECT_EQ(b->References(), 2u);
    EXPECT_EQ(a->References(), 2u);
    EXPECT_EQ(zeroP->References(), 2u);
}

TEST(ServiceContainer, WhatAServiceThrowsPassesOutWithTheTableAsFarAsItGot) {
    Log log;
    const Ref<CSinkService> failing(new CSinkService("f", log));
    failing->failNotices = true;
    Ref<IKTServiceContainer> container = NewContainer();
    EXPECT_THROW(container->AddService("f", failing.get()), CXException);
    EXPECT_EQ(container->GetService("f", nullptr), 1);
    EXPECT_EQ(failing->References(), 2u);
    EXPECT_THROW(container->RemoveService("f"), CXException);
    EXPECT_EQ(container->GetService("f", nullptr), 0);
    EXPECT_EQ(failing->References(), 1u);

    // "b" fails when asked: what Next had handed out goes back, its place
    // emptied.
    const Ref<CSinkService> sinks[] = {Ref<CSinkService>(new CSinkService("a", log)),
                                       Ref<CSinkService>(new CSinkService("b", log)),
                                       Ref<CSinkService>(new CSinkService("c", log))};
    for (const auto& sink : sinks)
        container->AddService(sink->name, sink.get());
    sinks[1]->failQueries = true;
    CTEnum<IKTUnknown*>* made = nullptr;
    container->EnumServices(typeid(IKTServiceSink), &made);
    IKTUnknown* items[3] = {};
    EXPECT_THROW(Ref<CTEnum<IKTUnknown*>>(made)->Next(3, items, nullptr), CXException);
    EXPECT_EQ(items[0], nullptr);
    EXPECT_EQ(sinks[0]->References(), 2u);

    // A sink that fails during the destruction keeps neither the others from
    // being told nor any service.
    container.reset();
    EXPECT_EQ(log, (Log{"added f (3): f", "removed f (3):", "added a (3): a", "added b (3): a b",
                        "added c (3): a b c", "removed a (3): unreachable", "removed c (3): unreachable"}));
    for (const auto& sink : sinks)
        EXPECT_EQ(sink->References(), 1u) << sink->name;
}

// A name holds one service: a taken one, or its twin by hash ("aaeaea" and
// "abagab"), is refused and tells no sink.
TEST(ServiceContainer, MadeByNameAloneOrAggregatedItHoldsOneServiceANameAndLendsSinksAWayBack) {
    ASSERT_EQ(IsRegisterObject(kClassName), 1);
    for (const bool aggregated : {false, true}) {
        SCOPED_TRACE(aggregated ? "aggregated" : "standing alone");
        Log log;
        const Ref<CSinkService> sink(new CSinkService("s", log));
        const Ref<CCounted> plain(new CCounted);
        Ref<CHostObject> host(aggregated ? new CHostObject : nullptr);
        Ref<IKTServiceContainer> container =
            aggregated ? Answer<IKTServiceContainer>(host.get()) : NewContainer();
        ASSERT_NE(container, nullptr);
        // The controlling object: the host, or the container's own shell.
        IKTUnknown* identity = Answer<IKTUnknown>(container.get()).get();
        if (aggregated) {
            EXPECT_EQ(identity, host.get());
            IKTUnknown* refused = nullptr;
            EXPECT_EQ(CreateObject(kClassName, host.get(), typeid(IKTServiceContainer), &refused), 0);
            EXPECT_EQ(refused, nullptr);
        }
        const ULONG held = References(identity);
        EXPECT_EQ(held, aggregated ? 2u : 1u);

        EXPECT_EQ(container->AddService("p", plain.get()), 1);
        EXPECT_EQ(container->AddService("s", sink.get()), 1);
        EXPECT_EQ(container->AddService("aaeaea", plain.get()), 1);
        EXPECT_EQ(container->AddService("s", plain.get()), 0);
        EXPECT_EQ(container->AddService("abagab", sink.get()), 0);
        EXPECT_EQ(container->AddService(nullptr, plain.get()) + container->AddService("n", nullptr), 0);
        EXPECT_EQ(container->GetService("abagab", nullptr), 1);  // a look takes no reference
        // The sink's way back is uncounted, and leads to its siblings.
        EXPECT_EQ(sink->container->AddRef(), 0u);
        EXPECT_EQ(sink->container->Release(), 0u);
        IKTUnknown* sibling = nullptr;
        Answer<IKTServiceContainer>(sink->container)->GetService("abagab", &sibling);
        EXPECT_EQ(Ref<IKTUnknown>(sibling).get(), plain.get());
        EXPECT_EQ(References(identity), held);
        EXPECT_EQ(plain->References(), 3u);
        EXPECT_EQ(container->RemoveService("p"), 1);
        EXPECT_EQ(container->RemoveService("p"), 0);
        EXPECT_EQ(plain->References(), 2u);

        EXPECT_EQ(container.release()->Release(), held - 1);
        host.reset();
        EXPECT_EQ(log, (Log{"added s (3): p s", "removed s (3): unreachable"}));
        EXPECT_EQ(sink->References(), 1u);
        EXPECT_EQ(plain->References(), 1u);
    }
}

}  // namespace
