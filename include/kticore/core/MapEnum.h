// CTMapEnum: a map that is at the same time a counted object, so that the
// enumerators of its keys can keep it alive.
#pragma once

#include "kticore/core/Enum.h"
#include "kticore/core/Map.h"

template <class K, class V, class KR, class VR>
class CTMapEnum;

// Walks the keys of a CTMapEnum. Having reached the end it stays there until
// Reset, as a list's enumerator does, although the map's own walk would begin
// again.
template <class K, class V, class KR, class VR>
class _CMapKeyEnum : public CTOwnedEnum<KR, CTMapEnum<K, V, KR, VR>> {
public:
    explicit _CMapKeyEnum(CTMapEnum<K, V, KR, VR>* owner)
        : CTOwnedEnum<KR, CTMapEnum<K, V, KR, VR>>(owner) {}

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
};
