// The library's lists. COList is a circular, doubly linked chain of links
// that the listed objects embed; a list converts a link back to its object by
// the link's fixed distance within the object (a static_cast from a base).
// CTList keeps values in nodes of its own, CTPList owns the pointers it keeps.
#pragma once

#include <type_traits>

#include "kticore/core/Heap.h"

struct KT_LISTITEM {
    KT_LISTITEM* next = nullptr;
    KT_LISTITEM* previous = nullptr;
};

// Inside, next of `last` is `first` and previous of `first` is `last`; for a
// caller walking with Next, the successor of the last item is null.
class COList {
public:
    void AddTail(KT_LISTITEM* item) {
        if (first == nullptr) {
            item->next = item->previous = item;
            first = item;
        } else {
            item->previous = last;
            item->next = first;
            last->next = item;
            first->previous = item;
        }
        last = item;
        ++count;
    }

    void Remove(KT_LISTITEM* item) {
        if (item->next == item) {
            first = last = nullptr;
        } else {
            item->previous->next = item->next;
            item->next->previous = item->previous;
            if (item == first)
                first = item->next;
            if (item == last)
                last = item->previous;
        }
        item->next = item->previous = nullptr;
        --count;
    }

    KT_LISTITEM* Next(const KT_LISTITEM* item) const { return item == last ? nullptr : item->next; }

    DWORD count = 0;
    KT_LISTITEM* first = nullptr;
    KT_LISTITEM* last = nullptr;
};

// A node of CTList: the links, then the value.
template <class T>
struct _CTListPlex : KT_LISTITEM {
    explicit _CTListPlex(const T& value) : value(value) {}
    T value;
};

template <class Plex>
class CTList : public COList {
public:
    explicit CTList(IHeap* heap = nullptr) : heap(heap != nullptr ? heap : Mem_DefaultHeap(0)) {}
    CTList(const CTList&) = delete;
    CTList& operator=(const CTList&) = delete;
    ~CTList() { RemoveAll(); }

    // The new last node, or null once RemoveAll has closed the list.
    template <class T>
    Plex* AddTail(const T& value) {
        if (closing)
            return nullptr;
        Plex* node = new Plex(value);
        COList::AddTail(node);
        return node;
    }

    // Unlinks `node` and hands it back; the caller frees it.
    Plex* Remove(Plex* node) {
        COList::Remove(node);
        return node;
    }

    // Frees every node and closes the list for good.
    void RemoveAll() {
        CloseAndEmpty([](Plex* node) { delete node; });
    }

    Plex* First() const { return static_cast<Plex*>(first); }
    Plex* Next(const Plex* node) const { return static_cast<Plex*>(COList::Next(node)); }

    IHeap* heap;
    DWORD closing = 0;

protected:
    // Each node leaves the list before `freeNode` sees it: a value's
    // destructor that walks the list meets only what is still in it, and
    // cannot add to it.
    template <class FreeNode>
    void CloseAndEmpty(FreeNode freeNode) {
        if (closing)
            return;
        closing = 1;
        while (first != nullptr)
            freeNode(Remove(First()));
    }
};

// A list that owns its items: a pointer in it is deleted with it (text with
// delete[]).
template <class T>
class CTPList : public CTList<_CTListPlex<T>> {
public:
    using CTList<_CTListPlex<T>>::CTList;

    virtual ~CTPList() { RemoveAll(); }

    void RemoveAll() {
        this->CloseAndEmpty([](_CTListPlex<T>* node) {
            T item = node->value;
            delete node;
            DeleteItem(item);
        });
    }

private:
    static void DeleteItem(T item) {
        if constexpr (std::is_same_v<std::remove_cv_t<std::remove_pointer_t<T>>, char>)
            delete[] item;
        else
            delete item;
    }
};
