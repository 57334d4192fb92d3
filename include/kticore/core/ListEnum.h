// CTListEnum: an owning list that is at the same time a counted object, so
// that the enumerators of its items can keep it alive.
#pragma once

#include "kticore/core/Enum.h"
#include "kticore/core/List.h"

template <class T, class R>
class CTListEnum;

// Walks the items of a CTListEnum in list order. Each AddRef and Release
// counts on the enumerator and on the list.
template <class T, class R>
class _CListEnum : public CTEnum<R> {
public:
    explicit _CListEnum(CTListEnum<T, R>* owner) : owner(owner) { static_cast<IKTUnknown&>(*owner).AddRef(); }
    _CListEnum(const _CListEnum&) = delete;
    _CListEnum& operator=(const _CListEnum&) = delete;
    virtual ~_CListEnum() = default;

    ULONG AddRef() override {
        static_cast<IKTUnknown&>(*owner).AddRef();
        return ++refs;
    }

    ULONG Release() override {
        const ULONG left = --refs;
        IKTUnknown& list = *owner;
        if (left == 0)
            delete this;
        list.Release();
        return left;
    }

    int QueryInterface(const type_info& wanted, void** out) override {
        const bool found = wanted == typeid(IKTUnknown) || wanted == typeid(CTEnum<R>);
        if (out == nullptr)
            return found;
        *out = found ? static_cast<CTEnum<R>*>(this) : nullptr;
        if (found)
            AddRef();
        return found;
    }

    int Next(ULONG count, R* items, ULONG* fetched) override {
        if (!started)
            Reset();
        ULONG stored = 0;
        for (; items != nullptr && stored < count && current != nullptr; ++stored) {
            items[stored] = static_cast<R>(current->value);
            current = owner->Next(current);
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
            current = owner->Next(current);
        return current != nullptr;
    }

    void Reset() override {
        current = owner->First();
        started = 1;
    }

private:
    _CTListPlex<T>* current = nullptr;
    CTListEnum<T, R>* owner;
    DWORD started = 0;
    ULONG refs = 1;
};

template <class T, class R>
class CTListEnum : public CTPList<T>, public CKTUnknownImpl<IKTUnknown> {
public:
    using CTPList<T>::CTPList;

    // A new enumerator of the items with one reference.
    CTEnum<R>* GetEnum() { return new _CListEnum<T, R>(this); }
};
