// CTMapEnum: a map that is at the same time a counted object, so that the
// enumerators of its keys can keep it alive. It knows its live enumerators,
// and its own Remove and Clear move them off the entries that go: a walk
// never stands on a freed entry.
#pragma once

#include "kticore/core/Enum.h"
#include "kticore/core/LiveWalks.h"
#include "kticore/core/Map.h"

template <class K, class V, class KR, class VR>
class CTMapEnum;

// Walks the keys of a CTMapEnum. Having reached the end it stays there until
// Reset, as a list's enumerator does, although the map's own walk would begin
// again.
template <class K, class V, class KR, class VR>
class _CMapKeyEnum : public CTOwnedEnum<KR, CTMapEnum<K, V, KR, VR>>,
                     public CTLiveWalk<_CMapKeyEnum<K, V, KR, VR>> {
public:
    explicit _CMapKeyEnum(CTMapEnum<K, V, KR, VR>* owner)
        : CTOwnedEnum<KR, CTMapEnum<K, V, KR, VR>>(owner) {
        owner->walks.Attach(this);
    }
    // The owner lives until the enumerator is gone: its reference goes last.
    ~_CMapKeyEnum() override { this->owner->walks.Detach(this); }

    int Next(ULONG count, KR* items, ULONG* fetched) override {
        if (!started)
            Reset();
        ULONG stored = 0;
        for (; items != nullptr && stored < count; ++stored) {
            K* key = Step();
            if (key == nullptr)
                break;
            items[stored] = static_cast<KR>(*key);
        }
        if (fetched != nullptr)
            *fetched = stored;
        return stored != 0;
    }

    // 1 if all `count` steps could be taken.
    int Skip(ULONG count) override {
        if (!started)
            Reset();
        for (; count != 0; --count)
            if (Step() == nullptr)
                return 0;
        return 1;
    }

    void Reset() override {
        position = CTMapPosition();
        started = 1;
        finished = false;
    }

private:
    friend class CTMapEnum<K, V, KR, VR>;

    K* Step() {
        K* key = finished ? nullptr : this->owner->NextKey(position);
        finished = key == nullptr;
        return key;
    }

    CTMapPosition position;
    DWORD started = 0;
    bool finished = false;
};

template <class K, class V, class KR, class VR>
class CTMapEnum : public CTMap<K, V>, public CKTUnknownImpl<IKTUnknown> {
public:
    explicit CTMapEnum(IHeap* heap = nullptr, DWORD tableSize = 127)
        : CTMap<K, V>(heap, tableSize) {}

    // A new enumerator of the keys with one reference, or null once the map
    // is closed.
    CTEnum<KR>* GetEnum() {
        if (this->closing)
            return nullptr;
        return new _CMapKeyEnum<K, V, KR, VR>(this);
    }

    // Removes as the map does; an enumerator standing on the entry goes on
    // from the entry before it in its chain, or from the start of its bucket.
    int Remove(K key) {
        using Node = typename CTMap<K, V>::Node;
        if (Node* gone = this->closing ? nullptr : this->Find(key)) {
            Node* before = nullptr;
            for (Node* node = *this->Bucket(gone->hash); node != gone; node = node->next)
                before = node;
            walks.ForEach([&](Walk& walk) {
                if (walk.position.node == gone)
                    walk.position.node = before;
            });
        }
        return CTMap<K, V>::Remove(key);
    }

    // Empties and reopens the map as the map does; every enumerator is at
    // its end.
    void Clear() {
        walks.ForEach([](Walk& walk) {
            walk.position = CTMapPosition();
            walk.finished = true;
        });
        CTMap<K, V>::Clear();
    }

private:
    using Walk = _CMapKeyEnum<K, V, KR, VR>;
    friend Walk;

    CTLiveWalks<Walk> walks;
};
