// CTListEnum: an owning list that is at the same time a counted object, so
// that the enumerators of its items can keep it alive. It knows its live
// enumerators, and its own Remove and RemoveAll move them off the nodes that
// go: a walk never stands on a freed node.
#pragma once

#include "kticore/core/Enum.h"
#include "kticore/core/List.h"
#include "kticore/core/LiveWalks.h"

template <class T, class R>
class CTListEnum;

// Walks the items of a CTListEnum in list order.
template <class T, class R>
class _CListEnum : public CTOwnedEnum<R, CTListEnum<T, R>>, public CTLiveWalk<_CListEnum<T, R>> {
public:
    explicit _CListEnum(CTListEnum<T, R>* owner) : CTOwnedEnum<R, CTListEnum<T, R>>(owner) {
        owner->walks.Attach(this);
    }
    // The owner lives until the enumerator is gone: its reference goes last.
    ~_CListEnum() override { this->owner->walks.Detach(this); }

    int Next(ULONG count, R* items, ULONG* fetched) override {
        if (!started)
            Reset();
        ULONG stored = 0;
        for (; items != nullptr && stored < count && current != nullptr; ++stored) {
            items[stored] = static_cast<R>(current->value);
            current = this->owner->Next(current);
        }
        if (fetched != nullptr)
            *fetched = stored;
        return stored != 0;
    }

    // 1 if an item is left at the new position.
    int Skip(ULONG count) override {
        if (!started)
            Reset();
        for (; count != 0 && current != nullptr; --count)
            current = this->owner->Next(current);
        return current != nullptr;
    }

    void Reset() override {
        current = this->owner->First();
        started = 1;
    }

private:
    friend class CTListEnum<T, R>;

    _CTListPlex<T>* current = nullptr;
    DWORD started = 0;
};

template <class T, class R>
class CTListEnum : public CTPList<T>, public CKTUnknownImpl<IKTUnknown> {
public:
    using CTPList<T>::CTPList;

    using Plex = _CTListPlex<T>;

    // A new enumerator of the items with one reference.
    CTEnum<R>* GetEnum() { return new _CListEnum<T, R>(this); }

    // Unlinks `node` as the list does; an enumerator that would hand it out
    // next moves on to the node behind it.
    Plex* Remove(Plex* node) {
        walks.ForEach([&](_CListEnum<T, R>& walk) {
            if (walk.current == node)
                walk.current = this->Next(node);
        });
        return CTPList<T>::Remove(node);
    }

    // Empties and closes the list as the list does; every enumerator is at
    // its end.
    void RemoveAll() {
        walks.ForEach([](_CListEnum<T, R>& walk) { walk.current = nullptr; });
        CTPList<T>::RemoveAll();
    }

private:
    friend class _CListEnum<T, R>;

    CTLiveWalks<_CListEnum<T, R>> walks;
};
