#include "kticore/core/Unknown.h"

#include <gtest/gtest.h>

#include "kticore/core/Heap.h"

namespace {

struct ITestGreeter : IKTUnknown {
    virtual int Greet() = 0;
};

class CGreeter : public CKTUnknownImpl<ITestGreeter> {
public:
    explicit CGreeter(bool* destroyed = nullptr) : destroyed(destroyed) {}
    ~CGreeter() override {
        if (destroyed != nullptr)
            *destroyed = true;
    }
    int Greet() override { return 42; }
    ULONG References() const { return refs; }

private:
    bool* destroyed;
};

TEST(ReferenceCounting, NewObjectHoldsTheCreatorsReference) {
    bool destroyed = false;
    auto* greeter = new CGreeter(&destroyed);
    EXPECT_EQ(greeter->AddRef(), 2u);
    EXPECT_EQ(greeter->Release(), 1u);
    EXPECT_FALSE(destroyed);
    EXPECT_EQ(greeter->Release(), 0u);
    EXPECT_TRUE(destroyed);
}

TEST(QueryInterface, AMissStoresNullAndANullOutIsAPureTest) {
    auto* greeter = new CGreeter;
    void* out = greeter;
    EXPECT_EQ(greeter->QueryInterface(typeid(IHeap), &out), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(greeter->QueryInterface(typeid(IKTUnknown), nullptr), 1);
    EXPECT_EQ(greeter->QueryInterface(typeid(ITestGreeter), nullptr), 1);
    EXPECT_EQ(greeter->QueryInterface(typeid(IHeap), nullptr), 0);
    EXPECT_EQ(greeter->References(), 1u);
    greeter->Release();
}

TEST(QueryInterface, HitGivesTheObjectWithOneAddedReference) {
    auto* greeter = new CGreeter;
    void* out = nullptr;
    ASSERT_EQ(greeter->QueryInterface(typeid(ITestGreeter), &out), 1);
    EXPECT_EQ(out, static_cast<ITestGreeter*>(greeter));
    EXPECT_EQ(greeter->References(), 2u);
    ASSERT_EQ(greeter->QueryInterface(typeid(IKTUnknown), &out), 1);
    EXPECT_EQ(out, static_cast<IKTUnknown*>(static_cast<ITestGreeter*>(greeter)));
    EXPECT_EQ(greeter->References(), 3u);
    greeter->Release();
    greeter->Release();
    EXPECT_EQ(greeter->Release(), 0u);
}

class CChild : public CKTUnknownImplParent<ITestGreeter, ITestGreeter> {
public:
    explicit CChild(bool* destroyed) : destroyed(destroyed) {}
    ~CChild() override { *destroyed = true; }
    int Greet() override { return 7; }
    ULONG BaseReferences() const { return refs; }

private:
    bool* destroyed;
};

TEST(ParentedObject, CountsOnItsOwnAndHoldsOneReferenceToItsParent) {
    bool parentGone = false;
    bool childGone = false;
    auto* parent = new CGreeter(&parentGone);
    auto* child = new CChild(&childGone);

    child->SetParent(parent);
    EXPECT_EQ(parent->References(), 2u);
    EXPECT_EQ(child->AddRef(), 2u);
    EXPECT_EQ(child->BaseReferences(), 1u);

    ITestGreeter* got = child->GetParent();
    EXPECT_EQ(got, parent);
    EXPECT_EQ(parent->References(), 3u);
    got->Release();

    EXPECT_EQ(parent->Release(), 1u);  // the creator lets go; the child keeps it
    EXPECT_FALSE(parentGone);
    EXPECT_EQ(child->Release(), 1u);
    EXPECT_EQ(child->Release(), 0u);
    EXPECT_TRUE(childGone);
    EXPECT_TRUE(parentGone);
}

TEST(ParentedObject, SetParentSwapsTheReferenceAndAcceptsNull) {
    bool childGone = false;
    auto* first = new CGreeter;
    auto* second = new CGreeter;
    auto* child = new CChild(&childGone);

    EXPECT_EQ(child->GetParent(), nullptr);
    child->SetParent(first);
    child->SetParent(second);
    EXPECT_EQ(first->References(), 1u);
    EXPECT_EQ(second->References(), 2u);
    child->SetParent(nullptr);
    EXPECT_EQ(second->References(), 1u);
    EXPECT_EQ(child->Release(), 0u);
    EXPECT_TRUE(childGone);
    EXPECT_EQ(first->Release(), 0u);
    EXPECT_EQ(second->Release(), 0u);
}

TEST(UncountedStandIn, CountsNothingAndAsksItsTarget) {
    auto* greeter = new CGreeter;
    CUnknownInternal standIn(greeter);
    EXPECT_EQ(standIn.AddRef(), 0u);
    EXPECT_EQ(standIn.Release(), 0u);
    EXPECT_EQ(greeter->References(), 1u);

    void* out = nullptr;
    ASSERT_EQ(standIn.QueryInterface(typeid(ITestGreeter), &out), 1);
    EXPECT_EQ(out, static_cast<ITestGreeter*>(greeter));
    EXPECT_EQ(greeter->References(), 2u);
    EXPECT_EQ(standIn.QueryInterface(typeid(IHeap), &out), 0);
    greeter->Release();
    EXPECT_EQ(greeter->Release(), 0u);
}

TEST(UncountedStandIn, WithoutATargetAnswersForNothing) {
    CUnknownInternal standIn;
    void* out = &standIn;
    EXPECT_EQ(standIn.QueryInterface(typeid(IKTUnknown), &out), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(standIn.QueryInterface(typeid(IKTUnknown), nullptr), 0);
}

}  // namespace
