// CTEnum: how a container hands its content to a caller, as a counted object
// that walks it. Enumerators keep what they walk alive.
#pragma once

#include <string>
#include <vector>

#include "kticore/core/Unknown.h"

template <class T>
struct CTEnum : IKTUnknown {
    // Stores up to `count` items and their number in *fetched (when not
    // null); returns 1 if it stored at least one.
    virtual int Next(ULONG count, T* items, ULONG* fetched) = 0;
    virtual int Skip(ULONG count) = 0;
    // Back to the first item.
    virtual void Reset() = 0;

protected:
    ~CTEnum() = default;
};

// An enumerator over an array it owns, with an optional owner object whose
// reference it holds. Skip moves on without a check; Next stops at the end.
template <class T>
class CTArrayEnum : public CKTUnknownImpl<CTEnum<T>> {
public:
    int Next(ULONG count, T* out, ULONG* fetched) override {
        ULONG stored = 0;
        for (; out != nullptr && stored < count && index < items.size(); ++stored)
            out[stored] = items[index++];
        if (fetched != nullptr)
            *fetched = stored;
        return stored != 0;
    }

    int Skip(ULONG count) override {
        index += count;
        return 1;
    }

    void Reset() override { index = 0; }

    ~CTArrayEnum() override {
        if (owner != nullptr)
            owner->Release();
    }

protected:
    explicit CTArrayEnum(IKTUnknown* owner = nullptr) : owner(owner) {
        if (owner != nullptr)
            owner->AddRef();
    }

    std::vector<T> items;
    ULONG index = 0;
    IKTUnknown* owner;
};

// The strings of a block of zero-terminated strings that ends with an empty
// one. The block is copied; the items point into the copy.
template <class C>
class _CZeroDelimitedStringsEnum : public CTArrayEnum<const C*> {
public:
    explicit _CZeroDelimitedStringsEnum(const C* block, IKTUnknown* owner = nullptr)
        : CTArrayEnum<const C*>(owner) {
        const C* end = block;
        if (end != nullptr)
            while (*end != 0)
                end += std::char_traits<C>::length(end) + 1;
        copy.assign(block, end);
        copy.push_back(0);
        for (size_t at = 0; at + 1 < copy.size(); at += std::char_traits<C>::length(&copy[at]) + 1)
            this->items.push_back(&copy[at]);
    }

private:
    std::vector<C> copy;
};

// The tokens of a text cut at any of a set of separator characters; runs of
// separators delimit no empty tokens. The text is copied; the items point
// into the copy.
template <class C>
class _CCharSeparatedStringsEnum : public CTArrayEnum<const C*> {
public:
    _CCharSeparatedStringsEnum(const C* text, const C* separators, IKTUnknown* owner = nullptr)
        : CTArrayEnum<const C*>(owner), copy(text != nullptr ? text : std::basic_string<C>()) {
        const std::basic_string<C> set(separators != nullptr ? separators : std::basic_string<C>());
        size_t at = 0;
        while ((at = copy.find_first_not_of(set, at)) != std::basic_string<C>::npos) {
            size_t end = copy.find_first_of(set, at);
            if (end == std::basic_string<C>::npos)
                end = copy.size();
            if (end < copy.size())
                copy[end] = 0;
            this->items.push_back(&copy[at]);
            at = end + 1;
        }
    }

private:
    std::basic_string<C> copy;
};

// An enumerator over a container that is itself a counted object. Each AddRef
// and Release counts on the enumerator and on the container, so the container
// lives while any of its enumerators does.
template <class T, class Owner>
class CTOwnedEnum : public CTEnum<T> {
public:
    CTOwnedEnum(const CTOwnedEnum&) = delete;
    CTOwnedEnum& operator=(const CTOwnedEnum&) = delete;
    virtual ~CTOwnedEnum() = default;

    ULONG AddRef() override {
        Container().AddRef();
        return ++refs;
    }

    ULONG Release() override {
        const ULONG left = --refs;
        IKTUnknown& container = Container();
        if (left == 0)
            delete this;
        container.Release();
        return left;
    }

    int QueryInterface(const type_info& wanted, void** out) override {
        const bool found = wanted == typeid(IKTUnknown) || wanted == typeid(CTEnum<T>);
        if (out == nullptr)
            return found;
        *out = found ? static_cast<CTEnum<T>*>(this) : nullptr;
        if (found)
            AddRef();
        return found;
    }

protected:
    explicit CTOwnedEnum(Owner* owner) : owner(owner) { Container().AddRef(); }

    Owner* owner;

private:
    IKTUnknown& Container() { return *owner; }

    ULONG refs = 1;
};
