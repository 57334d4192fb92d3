// The hash map: hash identity, ownership of values, closing, walking.
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "kticore/core/MapEnum.h"
#include "tests/support/WideText.h"

namespace kt::test {
namespace {

// What a walk step returned; a test fails rather than follow null.
template <class T>
T& Stepped(T* item) {
    if (item == nullptr)
        throw std::runtime_error("the walk ended early");
    return *item;
}

// A map is its entries' one owner: a copy would free them twice.
static_assert(!std::is_copy_constructible_v<CTMap<const char*, int>> &&
              !std::is_copy_assignable_v<CTMap<const char*, int>>);

// Counts how often it is alive.
class Counted : public CKTUnknownImpl<IKTUnknown> {
public:
    ULONG Refs() const { return refs; }
};

TEST(Map, ATextKeyHashesAsSpecifiedInThirtyTwoBits) {
    EXPECT_EQ(CTMapKey<const char*>::Hash(""), 0u);
    EXPECT_EQ(CTMapKey<const char*>::Hash("aaeaea"), 0xBAA5C14Eu);
    EXPECT_EQ(CTMapKey<const char*>::Hash("\xFF"), 0xFFFFFFFFu);        // bytes count as signed
    EXPECT_EQ(CTMapKey<const KTWCHAR*>::Hash(KTW("\uFFFF")), 0xFFFFu);  // units as unsigned
    EXPECT_EQ(CTMapKey<const KTWCHAR*>::Hash(KTW("abcdefg")), 0x656E1ABCu);
}

TEST(Map, KeysWithOneHashAreOneEntry) {
    CTMap<const char*, int> map;
    EXPECT_EQ(map.Set("aaeaea", 1), 1);
    EXPECT_EQ(map.Set("abagab", 2), 1);
    EXPECT_EQ(map.GetCount(), 1u);
    int value = 0;
    EXPECT_EQ(map.Lookup("aaeaea", value), 1);
    EXPECT_EQ(value, 2);
    CTMapPosition position;
    EXPECT_EQ(std::string(Stepped(map.NextKey(position))),
              "abagab");  // the spelling of the last Set
}

TEST(Map, SetReplacesAndRemoveForgets) {
    CTMap<const char*, int> map;
    map.Set("", 1);
    map.Set("one", 1);
    map.Set("one", 11);
    EXPECT_EQ(map.GetCount(), 2u);
    int value = -1;
    EXPECT_EQ(map.Lookup("", value), 1);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(map.Remove("one"), 1);
    EXPECT_EQ(map.Remove("one"), 0);
    value = 99;
    EXPECT_EQ(map.Lookup("one", value), 0);
    EXPECT_EQ(value, 99);
    EXPECT_EQ(map.GetCount(), 1u);
}

TEST(Map, CaseBlindKeysMeetAndKeepTheirSpelling) {
    CTMap<const ULONG*, int> map;
    auto key = [](const char* text) { return reinterpret_cast<const ULONG*>(text); };
    map.Set(key("Abc"), 7);
    int value = 0;
    EXPECT_EQ(map.Lookup(key("ABC"), value), 1);
    EXPECT_EQ(value, 7);
    CTMapPosition position;
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(Stepped(map.NextKey(position)))), "Abc");
}

TEST(Map, WalksBucketsInOrderAndChainsNewestFirst) {
    CTMap<int, int> map(nullptr, 7);
    map.Set(5, 50);
    map.Set(3, 30);
    map.Set(10, 100);  // bucket 3, in front of 3
    std::vector<int> keys;
    CTMapPosition position;
    for (int* key = map.NextKey(position); key != nullptr; key = map.NextKey(position))
        keys.push_back(*key);
    EXPECT_EQ(keys, (std::vector<int>{10, 3, 5}));
    EXPECT_EQ(position.node, nullptr);  // reset at the end
    EXPECT_EQ(Stepped(map.NextValue(position)), 100);
}

TEST(Map, CountedValuesHoldOneReferenceForTheMap) {
    Counted* object = new Counted;
    {
        CTMap<const char*, Counted*> map;
        map.Set("a", object);
        map.Set("b", object);
        EXPECT_EQ(object->Refs(), 3u);
        map.Set("b", object);  // replacing a value by itself
        EXPECT_EQ(object->Refs(), 3u);
        Counted* found = nullptr;
        EXPECT_EQ(map.Lookup("a", found, 1), 1);
        EXPECT_EQ(object->Refs(), 4u);
        found->Release();
        map.Remove("a");
        EXPECT_EQ(object->Refs(), 2u);
    }
    EXPECT_EQ(object->Refs(), 1u);
    object->Release();
}

// Sees whether a map holds a bucket table.
class InspectedMap : public CTMap<const char*, int> {
public:
    bool HasTable() const { return table != nullptr; }
};

TEST(Map, RemoveAllClosesAndClearReopens) {
    CTMap<const char*, int> unused;
    unused.RemoveAll();  // never held anything: stays open
    EXPECT_EQ(unused.Set("a", 1), 1);

    InspectedMap map;
    map.Set("a", 1);
    map.RemoveAll();
    EXPECT_EQ(map.GetCount(), 0u);
    EXPECT_EQ(map.Set("b", 2), 0);
    EXPECT_EQ(map.Remove("b"), 0);
    int value = 7;
    EXPECT_EQ(map.Lookup("a", value), 0);
    EXPECT_EQ(value, 7);
    CTMapPosition position;
    EXPECT_EQ(map.NextKey(position), nullptr);
    EXPECT_FALSE(map.HasTable());  // a closed map's destructor would not free one
    map.Clear();
    EXPECT_EQ(map.Set("b", 2), 1);
    EXPECT_EQ(map.Lookup("b", value), 1);
}

// A value that the map deletes with its entry, and that calls back into the
// map from its destructor.
struct Reentrant {
    explicit Reentrant(std::function<void()> onDelete = {}) : onDelete(std::move(onDelete)) {
        ++live;
    }
    ~Reentrant() {
        --live;
        if (onDelete)
            onDelete();
    }
    std::function<void()> onDelete;
    static int live;
};
int Reentrant::live = 0;

using ReentrantMap = CTMap<const char*, Reentrant*>;

// The values' destructors still reach the map through `map` while it goes.
void DeleteMap(ReentrantMap*& map) {
    delete map;
    map = nullptr;
}

TEST(MapReentry, ValuesLookUpTheirBucketNeighboursWhileTheMapIsEmptied) {
    const std::vector<std::pair<const char*, std::function<void(ReentrantMap*&)>>> emptyings = {
        {"RemoveAll", [](ReentrantMap*& map) { map->RemoveAll(); }},
        {"Clear", [](ReentrantMap*& map) { map->Clear(); }},
        {"destructor", DeleteMap},
    };
    for (const auto& [name, empty] : emptyings) {
        auto* map = new ReentrantMap(nullptr, 1);  // one bucket: every key a neighbour
        int found = 0;
        for (const char* key : {"a", "b", "c"}) {
            map->Set(key, new Reentrant([&map, &found] {
                         for (const char* other : {"a", "b", "c"}) {
                             Reentrant* value = nullptr;
                             found += map->Lookup(other, value);
                         }
                     }));
        }
        empty(map);
        EXPECT_EQ(found, 0) << name << ": an entry being freed was still found";
        EXPECT_EQ(Reentrant::live, 0) << name;
        delete map;
    }
}

TEST(MapReentry, AReplacedValueMayRemoveItsOwnEntry) {
    ReentrantMap map;
    map.Set("a", new Reentrant([&map] { map.Remove("a"); }));
    EXPECT_EQ(map.Set("a", new Reentrant), 1);
    Reentrant* value = nullptr;
    EXPECT_EQ(map.Lookup("a", value), 0);
    EXPECT_EQ(map.GetCount(), 0u);
    EXPECT_EQ(Reentrant::live, 0);
}

TEST(MapReentry, ARemovedValueSeesTheMapWithoutItsEntry) {
    ReentrantMap map;
    DWORD countSeen = 99;
    map.Set("b", new Reentrant);
    map.Set("a", new Reentrant([&map, &countSeen] { countSeen = map.GetCount(); }));
    map.Remove("a");
    EXPECT_EQ(countSeen, 1u);
}

TEST(MapReentry, AClearFromAValueDoesNotReopenTheMapBeingEmptied) {
    ReentrantMap map(nullptr, 1);
    int lateSet = -1;
    map.Set("a", new Reentrant([&map, &lateSet] {
                map.Clear();
                auto* late = new Reentrant;
                lateSet = map.Set("late", late);
                if (lateSet == 0)
                    delete late;  // a refused value stays the caller's
            }));
    map.RemoveAll();
    EXPECT_EQ(lateSet, 0);
    EXPECT_EQ(map.Set("b", nullptr), 0);  // the outer RemoveAll closed it
    EXPECT_EQ(Reentrant::live, 0);
}

TEST(Map, ReplacingAnOwnedValueByItselfKeepsIt) {
    ReentrantMap map;
    auto* value = new Reentrant;
    map.Set("a", value);
    map.Set("a", value);
    EXPECT_EQ(Reentrant::live, 1);
    Reentrant* found = nullptr;
    EXPECT_EQ(map.Lookup("a", found), 1);
    EXPECT_EQ(found, value);
    map.RemoveAll();
    EXPECT_EQ(Reentrant::live, 0);
}

TEST(Map, WideKeysAreCopied) {
    CTMap<const KTWCHAR*, int> map;
    KTWCHAR key[] = KTW("name");
    map.Set(key, 1);
    key[0] = 'g';
    int value = 0;
    EXPECT_EQ(map.Lookup(KTW("name"), value), 1);
    CTMapPosition position;
    EXPECT_EQ(Wide(Stepped(map.NextKey(position))), KTW("name"));
}

TEST(MapEnum, EnumeratorsKeepTheMapAliveAndSkipCountsSteps) {
    auto* map = new CTMapEnum<const char*, int, const char*, int>;
    map->Set("x", 1);
    map->Set("y", 2);
    CTEnum<const char*>* keys = map->GetEnum();
    map->Release();  // the enumerator holds it now

    const char* items[4] = {};
    ULONG fetched = 99;
    EXPECT_EQ(keys->Next(0, items, &fetched), 0);
    EXPECT_EQ(fetched, 0u);
    EXPECT_EQ(keys->Next(4, items, &fetched), 1);
    EXPECT_EQ(fetched, 2u);
    EXPECT_EQ(keys->Next(4, items, &fetched), 0);
    EXPECT_EQ(fetched, 0u);
    keys->Reset();
    EXPECT_EQ(keys->Skip(2), 1);
    keys->Reset();
    EXPECT_EQ(keys->Skip(3), 0);
    EXPECT_EQ(keys->QueryInterface(typeid(CTEnum<const char*>), nullptr), 1);
    keys->Release();
}

TEST(MapEnum, NoEnumeratorOnceRemoveAllHasClosedTheMap) {
    CTMapEnum<const char*, int, const char*, int> map;
    map.Set("x", 1);
    map.RemoveAll();
    EXPECT_EQ(map.GetEnum(), nullptr);
    map.Clear();
    CTEnum<const char*>* keys = map.GetEnum();
    ASSERT_NE(keys, nullptr);
    const char* key = nullptr;
    EXPECT_EQ(keys->Next(1, &key, nullptr), 0);
    keys->Release();
}

// "\x08" and "ab" share bucket 8 (25027 % 127), "\x08" newest and first;
// "c" is alone in bucket 99. Removing the entry a walk stands on, at the
// head of its chain or behind another, leaves the walk on what follows.
TEST(MapEnum, AWalkGoesOnPastTheEntryRemovedUnderItAndEndsAtAClear) {
    CTMapEnum<const char*, int, const char*, int> map;
    const auto walkAfterRemoving = [&map](int stepsBefore) {
        map.Set("ab", 1);
        map.Set("\x08", 2);
        map.Set("c", 3);
        CTEnum<const char*>* keys = map.GetEnum();
        const char* key = nullptr;
        for (int step = 0; step < stepsBefore; ++step)
            keys->Next(1, &key, nullptr);
        map.Remove(std::string(key).c_str());
        std::string rest;
        while (keys->Next(1, &key, nullptr))
            rest += std::string(key) + " ";
        keys->Release();
        return rest;
    };
    EXPECT_EQ(walkAfterRemoving(1), "ab c ");  // the head of bucket 8
    EXPECT_EQ(walkAfterRemoving(2), "c ");     // "ab", behind "\x08"

    CTEnum<const char*>* keys = map.GetEnum();
    const char* key = nullptr;
    ASSERT_EQ(keys->Next(1, &key, nullptr), 1);
    map.Clear();
    map.Set("c", 3);
    EXPECT_EQ(keys->Next(1, &key, nullptr), 0);
    keys->Release();
}

}  // namespace
}  // namespace kt::test
