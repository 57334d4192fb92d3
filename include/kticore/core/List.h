// The library's plain intrusive list: a circular, doubly linked chain of links
// that the listed objects embed. A list converts a link back to its object by
// the link's fixed distance within the object (a static_cast from a base).
#pragma once

#include "kticore/platform/Platform.h"

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
