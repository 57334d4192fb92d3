// Owning lists and the enumerators over lists and arrays.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "kticore/core/ListEnum.h"
#include "tests/support/WideText.h"

namespace kt::test {
namespace {

char* Copy(const char* text) { return std::strcpy(new char[std::strlen(text) + 1], text); }

// A list is its items' one owner: a copy would delete them twice.
static_assert(!std::is_copy_constructible_v<CTPList<char*>> &&
              !std::is_copy_assignable_v<CTPList<char*>>);

template <class T>
std::vector<std::string> Drain(CTEnum<T>* items) {
    std::vector<std::string> texts;
    T item{};
    while (items->Next(1, &item, nullptr))
        texts.emplace_back(item);
    return texts;
}

TEST(List, NodesKeepOrderAndRemoveUnlinksWithoutFreeing) {
    CTPList<char*> list;
    auto* a = list.AddTail(Copy("a"));
    list.AddTail(Copy("b"));
    auto* c = list.AddTail(Copy("c"));
    EXPECT_EQ(list.count, 3u);
    EXPECT_EQ(list.Next(c), nullptr);
    EXPECT_EQ(list.Remove(a), a);
    EXPECT_EQ(a->next, nullptr);
    EXPECT_EQ(std::string(list.First()->value), "b");
    delete[] a->value;
    delete a;
    list.RemoveAll();
    EXPECT_EQ(list.count, 0u);
    char* refused = Copy("closed");
    EXPECT_EQ(list.AddTail(refused), nullptr);  // closed for good; the item stays the caller's
    delete[] refused;
}

// A list whose end can be seen.
class WatchedList : public CTListEnum<const char*, const char*> {
public:
    explicit WatchedList(bool* destroyed) : destroyed(destroyed) {}
    ~WatchedList() override { *destroyed = true; }

private:
    bool* destroyed;
};

TEST(ListEnum, EnumeratorsOutliveTheCreatorsReference) {
    bool destroyed = false;
    auto* list = new WatchedList(&destroyed);
    for (const char* text : {"one", "two", "three"})
        list->AddTail(Copy(text));
    CTEnum<const char*>* items = list->GetEnum();
    list->Release();
    EXPECT_FALSE(destroyed);
    EXPECT_EQ(Drain(items), (std::vector<std::string>{"one", "two", "three"}));

    ULONG fetched = 7;
    const char* item = nullptr;
    EXPECT_EQ(items->Next(1, &item, &fetched), 0);
    EXPECT_EQ(fetched, 0u);
    items->Reset();
    EXPECT_EQ(items->Skip(2), 1);
    EXPECT_EQ(items->Skip(0), 1);
    EXPECT_EQ(items->Skip(1), 0);
    EXPECT_EQ(items->Next(1, nullptr, &fetched), 0);
    EXPECT_EQ(items->AddRef(), 2u);
    EXPECT_EQ(items->Release(), 1u);
    EXPECT_FALSE(destroyed);
    EXPECT_EQ(items->Release(), 0u);
    EXPECT_TRUE(destroyed);  // the last enumerator took the list with it
}

// An item of an owning list that walks its list when it is deleted.
struct Walker {
    CTPList<Walker*>* list;
    std::vector<size_t>* seen;
    bool alive = true;
    ~Walker() {
        alive = false;
        size_t live = 0;
        for (auto* node = list->First(); node != nullptr; node = list->Next(node))
            live += node->value->alive ? 1 : 0;
        seen->push_back(live);
        EXPECT_EQ(list->AddTail(nullptr), nullptr);  // closed while it empties
    }
};

TEST(List, ItemsDeletedWithTheListSeeOnlyTheItemsStillInIt) {
    std::vector<size_t> seen;
    {
        CTPList<Walker*> list;
        for (int i = 0; i < 3; ++i)
            list.AddTail(new Walker{&list, &seen});
    }
    EXPECT_EQ(seen, (std::vector<size_t>{2, 1, 0}));
}

TEST(ArrayEnum, ZeroDelimitedStringsAreCopied) {
    char block[] = "alpha\0beta\0\0ignored";
    auto* strings = new _CZeroDelimitedStringsEnum<char>(block);
    block[0] = 'X';
    EXPECT_EQ(Drain<const char*>(strings), (std::vector<std::string>{"alpha", "beta"}));
    strings->Reset();
    EXPECT_EQ(strings->Skip(5), 1);  // moves on without a check
    const char* item = nullptr;
    EXPECT_EQ(strings->Next(1, &item, nullptr), 0);
    strings->Release();
}

TEST(ArrayEnum, SeparatedStringsSkipEmptyTokensAndHoldTheirOwner) {
    auto* owner = new CTListEnum<const char*, const char*>;
    auto* tokens = new _CCharSeparatedStringsEnum<KTWCHAR>(KTW(";a;;bc; d;"), KTW("; "), owner);
    owner->Release();  // the enumerator's reference keeps it
    const KTWCHAR* items[4] = {};
    ULONG fetched = 0;
    EXPECT_EQ(tokens->Next(4, items, &fetched), 1);
    ASSERT_EQ(fetched, 3u);
    EXPECT_EQ(Wide(items[0]), KTW("a"));
    EXPECT_EQ(Wide(items[1]), KTW("bc"));
    EXPECT_EQ(Wide(items[2]), KTW("d"));
    tokens->Release();
}

}  // namespace
}  // namespace kt::test
