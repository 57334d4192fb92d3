// CTListEnum: an owning list that is at the same time a counted object, so
// that the enumerators of its items can keep it alive.
#pragma once

#include "kticore/core/Enum.h"
#include "kticore/core/List.h"

template <class T, class R>
class CTListEnum;

// Walks the items of a CTListEnum in list order.
template <class T, class R>
class _CListEnum : public CTOwnedEnum<R, CTListEnum<T, R>> {
public:
    explicit _CListEnum(CTListEnum<T, R>* owner) : CTOwnedEnum<R, CTListEnum<T, R>>(owner) {}

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
    _CTListPlex<T>* current = nullptr;
    DWORD started = 0;
};

template <class T, class R>
class CTListEnum : public CTPList<T>, public CKTUnknownImpl<IKTUnknown> {
public:
    using CTPList<T>::CTPList;

    // A new enumerator of the items with one reference.
    CTEnum<R>* GetEnum() { return new _CListEnum<T, R>(this); }
};
