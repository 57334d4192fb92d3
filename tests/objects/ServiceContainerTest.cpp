// The service container as a host makes it, by name through the registry:
// standing alone and aggregated into an object of the test's own. Services
// count their references, so a leak or a double release fails a check.
#include "kticore/objects/ServiceContainer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kticore/core/Exception.h"
#include "kticore/objects/Registry.h"
#include "tests/support/Counted.h"

namespace {

using kt::test::CCounted;
using kt::test::Ref;
using Log = std::vector<std::string>;

constexpr char kClassName[] = "CLSID_OFSERVICECONTAINER";

// An object's count now, through its own counting.
ULONG References(IKTUnknown* object) {
    object->AddRef();
    return object->Release();
}

template <class I>
Ref<I> Query(IKTUnknown* object) {
    void* out = nullptr;
    object->QueryInterface(typeid(I), &out);
    return Ref<I>(static_cast<I*>(out));
}

Ref<IKTServiceContainer> NewContainer() {
    IKTUnknown* made = nullptr;
    EXPECT_EQ(CreateObject(kClassName, nullptr, typeid(IKTServiceContainer), &made), 1);
    return Ref<IKTServiceContainer>(static_cast<IKTServiceContainer*>(made));
}

// A service that is told when it enters and leaves a container. Each notice
// goes to the log with what the container, reached through the pointer the
// notice brought, says of the service's name then: "listed", "unlisted", or
// "unreachable" when the pointer leads nowhere. The pointer is kept, to reach
// siblings later.
class CSinkService : public CKTUnknownImpl<IKTServiceSink> {
public:
    CSinkService(const char* name, Log& log) : name(name), log(log) {}

    int OnServiceAdded(IKTUnknown* from) override {
        container = from;
        return Note("added");
    }
    int OnServiceRemoved(IKTUnknown* from) override {
        container = from;
        return Note("removed");
    }

    int QueryInterface(const type_info& wanted, void** out) override {
        if (failQueries)
            throw CXException(XE_GENERIC);
        return CKTUnknownImpl::QueryInterface(wanted, out);
    }

    Ref<IKTUnknown> Sibling(const char* sibling) const {
        IKTUnknown* found = nullptr;
        Query<IKTServiceContainer>(container)->GetService(sibling, &found);
        return Ref<IKTUnknown>(found);
    }

    ULONG References() const { return refs; }

    const char* name;
    IKTUnknown* container = nullptr;
    bool failNotices = false;
    bool failQueries = false;

private:
    int Note(const char* notice) {
        const Ref<IKTServiceContainer> reached = Query<IKTServiceContainer>(container);
        const char* state = reached == nullptr                     ? "unreachable"
                            : reached->GetService(name, nullptr) ? "listed"
                                                                 : "unlisted";
        log.push_back(std::string(notice) + " " + name + " " + state);
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
        if (InternalQueryInterface(wanted, out))
            return 1;
        return wanted == typeid(IKTServiceContainer) ? inner->QueryInterface(wanted, out) : 0;
    }

    IKTUnknown* inner = nullptr;
};

TEST(ServiceContainer, TakenAbsentAndTwinNamesAreResultsAndOnlyAnAddedSinkIsTold) {
    Log log;
    const Ref<CSinkService> sink(new CSinkService("clock", log));
    const Ref<CCounted> plain(new CCounted);
    const Ref<IKTServiceContainer> container = NewContainer();
    // "aaeaea" and "abagab" share their hash, so they are one name.
    const struct {
        const char* name;
        IKTUnknown* service;
        int added;
    } additions[] = {
        {"clock", sink.get(), 1},  {"plain", plain.get(), 1}, {"clock", plain.get(), 0},
        {"aaeaea", plain.get(), 1}, {"abagab", sink.get(), 0}, {nullptr, plain.get(), 0},
        {"none", nullptr, 0},
    };
    for (const auto& addition : additions)
        EXPECT_EQ(container->AddService(addition.name, addition.service), addition.added)
            << (addition.name != nullptr ? addition.name : "(null)");
    EXPECT_EQ(log, Log{"added clock listed"});
    EXPECT_EQ(sink->References(), 2u);
    EXPECT_EQ(plain->References(), 3u);

    EXPECT_EQ(container->GetService("abagab", nullptr), 1);
    EXPECT_EQ(plain->References(), 3u);
    IKTUnknown* found = nullptr;
    ASSERT_EQ(container->GetService("abagab", &found), 1);
    EXPECT_EQ(found, plain.get());
    EXPECT_EQ(plain->References(), 4u);
    found->Release();

    EXPECT_EQ(container->RemoveService("nothing"), 0);
    EXPECT_EQ(container->RemoveService("plain"), 1);
    EXPECT_EQ(container->RemoveService("plain"), 0);
    EXPECT_EQ(container->GetService("plain", &found), 0);
    EXPECT_EQ(plain->References(), 2u);
    EXPECT_EQ(log, Log{"added clock listed"});
}

TEST(ServiceContainer, ASinkIsToldWithTheTableAsEachWayOfRemovalLeavesIt) {
    Log log;
    const Ref<CSinkService> first(new CSinkService("first", log));
    const Ref<CSinkService> second(new CSinkService("second", log));
    Ref<IKTServiceContainer> container = NewContainer();
    container->AddService("first", first.get());
    container->AddService("second", second.get());
    EXPECT_EQ(container->RemoveService("first"), 1);
    container->RemoveAllServices();
    EXPECT_EQ(first->References(), 1u);
    EXPECT_EQ(second->References(), 1u);

    // Emptied, the container takes services again; its destruction tells
    // each sink, without a way back to it, and releases each service once.
    EXPECT_EQ(container->AddService("first", first.get()), 1);
    container.reset();
    EXPECT_EQ(log, (Log{"added first listed", "added second listed", "removed first unlisted",
                        "removed second listed", "added first listed", "removed first unreachable"}));
    EXPECT_EQ(first->References(), 1u);
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
        } else if (step.op == Op::Skip) {
            EXPECT_EQ(walk->Skip(step.count), step.result);
        } else {
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
}

TEST(ServiceContainer, EnumeratorsWalkBucketsUpwardNewestFirstAndSkipStopsAtAServiceThatDoesNotAnswer) {
    Log log;
    // "a" and "0P" hash to bucket 97 of 127, "b" to 98.
    const Ref<CSinkService> b(new CSinkService("b", log));
    const Ref<CCounted> a(new CCounted);
    const Ref<CSinkService> zeroP(new CSinkService("0P", log));
    const Ref<IKTServiceContainer> container = NewContainer();
    container->AddService("b", b.get());
    container->AddService("a", a.get());
    container->AddService("0P", zeroP.get());

    CTEnum<const char*>* names = nullptr;
    ASSERT_EQ(container->EnumServiceNames(&names), 1);
    Play(Ref<CTEnum<const char*>>(names).get(),
         {{Op::Next, 3, 1, {"0P", "a", "b"}},
          {Op::Next, 1, 0, {}},
          {Op::Reset, 0, 0, {}},
          {Op::Next, 1, 1, {"0P"}},
          {Op::Skip, 1, 1, {}},
          {Op::Next, 2, 1, {"b"}},
          {Op::Skip, 1, 0, {}},
          {Op::Reset, 0, 0, {}},
          {Op::Skip, 0, 0, {}},
          {Op::Next, 0, 0, {}},
          {Op::Skip, 5, 1, {}}},
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
         {{Op::Next, 3, 1, {"0P", "b"}},
          {Op::Next, 1, 0, {}},
          {Op::Reset, 0, 0, {}},
          {Op::Skip, 2, 1, {}},
          {Op::Next, 1, 1, {"b"}},
          {Op::Reset, 0, 0, {}},
          {Op::Next, 1, 1, {"0P"}},
          {Op::Skip, 1, 0, {}},
          {Op::Next, 0, 0, {}},
          {Op::Skip, 0, 0, {}}},
         sinkName);

    CTEnum<IKTUnknown*>* none = nullptr;
    ASSERT_EQ(container->EnumServices(typeid(IKTServiceContainer), &none), 1);
    Play(Ref<CTEnum<IKTUnknown*>>(none).get(), {{Op::Next, 3, 0, {}}}, sinkName);

    EXPECT_EQ(b->References(), 2u);
    EXPECT_EQ(a->References(), 2u);
    EXPECT_EQ(zeroP->References(), 2u);
}

TEST(ServiceContainer, WhatAServiceThrowsPassesOutWithTheTableAsFarAsItGot) {
    Log log;
    const Ref<CSinkService> failing(new CSinkService("failing", log));
    failing->failNotices = true;
    Ref<IKTServiceContainer> container = NewContainer();
    EXPECT_THROW(container->AddService("failing", failing.get()), CXException);
    EXPECT_EQ(container->GetService("failing", nullptr), 1);
    EXPECT_EQ(failing->References(), 2u);
    EXPECT_THROW(container->RemoveService("failing"), CXException);
    EXPECT_EQ(container->GetService("failing", nullptr), 0);
    EXPECT_EQ(failing->References(), 1u);

    // "a" comes first, "b" fails when asked: what Next had handed out goes back.
    const Ref<CSinkService> a(new CSinkService("a", log));
    const Ref<CSinkService> b(new CSinkService("b", log));
    container->AddService("a", a.get());
    container->AddService("b", b.get());
    b->failQueries = true;
    CTEnum<IKTUnknown*>* sinks = nullptr;
    container->EnumServices(typeid(IKTServiceSink), &sinks);
    IKTUnknown* items[2] = {};
    EXPECT_THROW(Ref<CTEnum<IKTUnknown*>>(sinks)->Next(2, items, nullptr), CXException);
    EXPECT_EQ(a->References(), 2u);

    // A failure during the destruction does not keep a service.
    container.reset();
    EXPECT_EQ(a->References(), 1u);
    EXPECT_EQ(b->References(), 1u);
}

TEST(ServiceContainer, MadeByNameStandingAloneOrAggregatedItLendsSinksAnUncountedWayToTheirSiblings) {
    ASSERT_EQ(IsRegisterObject(kClassName), 1);
    for (const bool aggregated : {false, true}) {
        SCOPED_TRACE(aggregated ? "aggregated" : "standing alone");
        Log log;
        const Ref<CSinkService> sink(new CSinkService("clock", log));
        const Ref<CCounted> plain(new CCounted);
        Ref<CHostObject> host(aggregated ? new CHostObject : nullptr);
        Ref<IKTServiceContainer> container =
            aggregated ? Query<IKTServiceContainer>(host.get()) : NewContainer();
        ASSERT_NE(container, nullptr);
        // The controlling object: the host, or the container's own shell.
        IKTUnknown* identity = Query<IKTUnknown>(container.get()).get();
        if (aggregated) {
            EXPECT_EQ(identity, host.get());
            IKTUnknown* refused = nullptr;
            EXPECT_EQ(CreateObject(kClassName, host.get(), typeid(IKTServiceContainer), &refused), 0);
            EXPECT_EQ(refused, nullptr);
        }
        const ULONG held = References(identity);
        EXPECT_EQ(held, aggregated ? 2u : 1u);

        container->AddService("plain", plain.get());
        container->AddService("clock", sink.get());
        EXPECT_EQ(sink->container->AddRef(), 0u);
        EXPECT_EQ(sink->container->Release(), 0u);
        EXPECT_EQ(sink->Sibling("plain").get(), plain.get());
        EXPECT_EQ(References(identity), held);
        EXPECT_EQ(plain->References(), 2u);

        EXPECT_EQ(container.release()->Release(), held - 1);
        host.reset();
        EXPECT_EQ(log, (Log{"added clock listed", "removed clock unreachable"}));
        EXPECT_EQ(sink->References(), 1u);
        EXPECT_EQ(plain->References(), 1u);
    }
}

}  // namespace
