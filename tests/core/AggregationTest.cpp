#include "kticore/core/Aggregation.h"

#include <gtest/gtest.h>

#include "kticore/core/Heap.h"

namespace {

struct ITestService : IKTUnknown {
    virtual int Serve() = 0;
};

int liveServices = 0;

// An aggregatable class: its counting goes to whatever controls it.
class CTestService : public CKTContainedObject<CTestService>, public ITestService {
public:
    CTestService() { ++liveServices; }
    ~CTestService() override { --liveServices; }

    ULONG AddRef() override { return CKTContainedObject::AddRef(); }
    ULONG Release() override { return CKTContainedObject::Release(); }
    int QueryInterface(const type_info& wanted, void** out) override {
        return CKTContainedObject::QueryInterface(wanted, out);
    }
    int Serve() override { return 5; }

    int InternalQueryInterface(const type_info& wanted, void** out) {
        if (wanted != typeid(ITestService))
            return 0;
        *out = static_cast<ITestService*>(this);
        AddRef();
        return 1;
    }
};

// A controlling object that aggregates a service.
class COuter : public CKTUnknownImpl<IKTUnknown> {
public:
    ULONG References() const { return refs; }
};

TEST(Aggregation, StandAloneObjectIsControlledByItsShell) {
    void* out = nullptr;
    ASSERT_EQ(KTCreateAggregate<CTestService>(nullptr, typeid(ITestService), &out), 1);
    auto* service = static_cast<ITestService*>(out);
    EXPECT_EQ(service->Serve(), 5);
    EXPECT_EQ(liveServices, 1);

    // The shell answers AddRef with the count before the increment.
    EXPECT_EQ(service->AddRef(), 1u);
    EXPECT_EQ(service->Release(), 1u);

    ASSERT_EQ(service->QueryInterface(typeid(IKTUnknown), &out), 1);
    auto* shell = static_cast<IKTUnknown*>(out);
    EXPECT_NE(static_cast<void*>(shell), static_cast<void*>(service));
    out = shell;
    EXPECT_EQ(shell->QueryInterface(typeid(IHeap), &out), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(shell->Release(), 1u);

    EXPECT_EQ(service->Release(), 0u);
    EXPECT_EQ(liveServices, 0);
}

TEST(Aggregation, FactoryRefusesAnythingButIKTUnknownWhenGivenAnOuterObject) {
    auto* outer = new COuter;
    void* out = outer;
    EXPECT_EQ(KTCreateAggregate<CTestService>(outer, typeid(ITestService), &out), 0);
    EXPECT_EQ(liveServices, 0);
    EXPECT_EQ(outer->References(), 1u);
    outer->Release();
}

TEST(Aggregation, AggregatedObjectCountsOnTheOuterObject) {
    auto* outer = new COuter;
    void* out = nullptr;
    ASSERT_EQ(KTCreateAggregate<CTestService>(outer, typeid(IKTUnknown), &out), 1);
    auto* inner = static_cast<IKTUnknown*>(out);  // the shell, owned by the outer object
    EXPECT_EQ(outer->References(), 1u);

    ASSERT_EQ(inner->QueryInterface(typeid(ITestService), &out), 1);
    auto* service = static_cast<ITestService*>(out);
    EXPECT_EQ(outer->References(), 2u);  // the service's reference is the outer's
    EXPECT_EQ(service->Serve(), 5);

    // The service's QueryInterface is the outer object's.
    EXPECT_EQ(service->QueryInterface(typeid(ITestService), nullptr), 0);
    EXPECT_EQ(service->QueryInterface(typeid(IKTUnknown), &out), 1);
    EXPECT_EQ(out, static_cast<IKTUnknown*>(outer));
    EXPECT_EQ(outer->References(), 3u);

    service->Release();
    outer->Release();
    EXPECT_EQ(outer->References(), 1u);
    EXPECT_EQ(inner->Release(), 0u);
    EXPECT_EQ(liveServices, 0);
    outer->Release();
}

}  // namespace
