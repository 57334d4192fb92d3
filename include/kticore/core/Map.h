// CTMap: a chained hash map with a table of fixed size (127 buckets as a
// rule). A key is identified by its 32-bit hash alone: two keys with one hash
// are one entry, and the text of a key is never compared; the stored copy is
// only what a walk gives back. New entries go to the front of their chain.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>

#include "kticore/core/Heap.h"
#include "kticore/core/Unknown.h"

// How a key type hashes and keeps its keys.
template <class K>
struct CTMapKey;

// h = h * 257 + value(unit) over a terminated text, in 32 bits, and the
// text's length on the way. Four units a step, the same value: the multiplications of a step do not wait on each
// other, where one unit a step waits on the last product each time, and a
// dictionary lookup hashes its whole text.
template <class Unit, class Value>
DWORD CTMapTextHash(const Unit* text, Value value, size_t& length) {
    constexpr DWORD k1 = 257, k2 = k1 * k1, k3 = k2 * k1, k4 = k3 * k1;
    DWORD hash = 0;
    for (const Unit* start = text;; text += 4) {
        const size_t done = static_cast<size_t>(text - start);
        if (text[0] == 0) {
            length = done;
            return hash;
        }
        if (text[1] == 0) {
            length = done + 1;
            return hash * k1 + value(text[0]);
        }
        if (text[2] == 0) {
            length = done + 2;
            return hash * k2 + value(text[0]) * k1 + value(text[1]);
        }
        if (text[3] == 0) {
            length = done + 3;
            return hash * k3 + value(text[0]) * k2 + value(text[1]) * k1 + value(text[2]);
        }
        hash = hash * k4 + value(text[0]) * k3 + value(text[1]) * k2 + value(text[2]) * k1 +
               value(text[3]);
    }
}

template <class Unit, class Value>
DWORD CTMapTextHash(const Unit* text, Value value) {
    size_t length;
    return CTMapTextHash(text, value, length);
}

// Narrow text: h = h * 257 + c over its bytes taken as signed, in 32 bits.
template <>
struct CTMapKey<const char*> {
    static DWORD Hash(const char* key) {
        return CTMapTextHash(
            key, [](char c) { return static_cast<DWORD>(static_cast<signed char>(c)); });
    }
    static const char* Copy(const char* key) {
        const size_t size = std::strlen(key) + 1;
        return static_cast<const char*>(std::memcpy(new char[size], key, size));
    }
    static void Free(const char* key) { delete[] key; }
};

// Narrow text behind another pointer type, hashed in lower case: keys that
// differ only in case are one key. Kept in the spelling given.
template <>
struct CTMapKey<const ULONG*> {
    static const char* Text(const ULONG* key) { return reinterpret_cast<const char*>(key); }
    static DWORD Hash(const ULONG* key) {
        return CTMapTextHash(Text(key), [](char c) {
            const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
            return static_cast<DWORD>(static_cast<signed char>(lower));
        });
    }
    static const ULONG* Copy(const ULONG* key) {
        return reinterpret_cast<const ULONG*>(CTMapKey<const char*>::Copy(Text(key)));
    }
    static void Free(const ULONG* key) { CTMapKey<const char*>::Free(Text(key)); }
};

// 16-bit text: the same over its units, taken unsigned.
template <>
struct CTMapKey<const KTWCHAR*> {
    static DWORD Hash(const KTWCHAR* key) {
        size_t length;
        return Hash(key, length);
    }
    // With the text's length, found on the way.
    static DWORD Hash(const KTWCHAR* key, size_t& length) {
        return CTMapTextHash(
            key, [](KTWCHAR unit) { return static_cast<DWORD>(static_cast<WORD>(unit)); }, length);
    }
    static const KTWCHAR* Copy(const KTWCHAR* key) {
        const size_t size = std::char_traits<KTWCHAR>::length(key) + 1;
        KTWCHAR* copy = new KTWCHAR[size];
        std::char_traits<KTWCHAR>::copy(copy, key, size);
        return copy;
    }
    static void Free(const KTWCHAR* key) { delete[] key; }
};

// Numbers are their own hash and their own copy.
template <class N>
struct CTMapNumberKey {
    static DWORD Hash(N key) { return static_cast<DWORD>(key); }
    static N Copy(N key) { return key; }
    static void Free(N) {}
};
template <>
struct CTMapKey<unsigned> : CTMapNumberKey<unsigned> {};
template <>
struct CTMapKey<int> : CTMapNumberKey<int> {};

// What the map does with its values: a counted object holds one reference
// for the map, another pointer is deleted with its entry, anything else is
// kept by value. Replaced frees what a Set replaced by `current`.
template <class V, class = void>
struct CTMapValue {
    static constexpr bool kCounted = false;
    static void Retain(V&) {}
    static void Free(V&) {}
    static void Replaced(V&, const V&) {}
};
template <class T>
struct CTMapValue<T*, std::enable_if_t<std::is_base_of_v<IKTUnknown, T>>> {
    static constexpr bool kCounted = true;
    static void Retain(T* value) {
        if (value != nullptr)
            value->AddRef();
    }
    static void Free(T* value) {
        if (value != nullptr)
            value->Release();
    }
    // The new value has its reference already, so the same object balances.
    static void Replaced(T* old, T*) { Free(old); }
};
template <class T>
struct CTMapValue<T*, std::enable_if_t<!std::is_base_of_v<IKTUnknown, T>>> {
    static constexpr bool kCounted = false;
    static void Retain(T*) {}
    static void Free(T* value) { delete value; }
    // The same pointer set again is still in use.
    static void Replaced(T* old, T* current) {
        if (old != current)
            delete old;
    }
};

// A place in a walk over a map: (0, null) before the first entry.
struct CTMapPosition {
    int bucket = 0;
    void* node = nullptr;
};

template <class K, class V>
class CTMap {
public:
    struct Node {
        Node* next;
        V value;
        K key;
        DWORD hash;
    };

    static constexpr DWORD kTableMark = 6502;

    explicit CTMap(IHeap* heap = nullptr, DWORD tableSize = 127)
        : heap(heap), tableSize(tableSize), bucketStep(~std::uint64_t{0} / tableSize + 1) {}
    CTMap(const CTMap&) = delete;
    CTMap& operator=(const CTMap&) = delete;
    virtual ~CTMap() { RemoveAll(); }

    // Stores `value` under `key`, replacing the entry of the same hash (its
    // key copy takes the new spelling). 0 once RemoveAll has closed the map.
    //
    // A value's destructor may call back into the map, even remove the entry
    // that is being changed, so every operation frees a value last, when the
    // map is whole again and the node is no longer needed.
    int Set(K key, const V& value) {
        if (closing)
            return 0;
        const DWORD hash = Keys::Hash(key);
        Node** bucket = Bucket(hash);
        for (Node* node = *bucket; node != nullptr; node = node->next) {
            if (node->hash != hash)
                continue;
            const K oldKey = node->key;
            node->key = Keys::Copy(key);
            Keys::Free(oldKey);
            V old = node->value;
            node->value = value;
            Values::Retain(node->value);
            Values::Replaced(old, node->value);
            return 1;
        }
        *bucket = new Node{*bucket, value, Keys::Copy(key), hash};
        Values::Retain((*bucket)->value);
        ++count;
        return 1;
    }

    int Lookup(K key, V& out) {
        const Node* node = Find(key);
        if (node == nullptr)
            return 0;
        out = node->value;
        return 1;
    }

    // The entry of a key known by its hash alone.
    int LookupHash(DWORD hash, V& out) {
        const Node* node = FindHash(hash);
        if (node == nullptr)
            return 0;
        out = node->value;
        return 1;
    }

    // For counted values: with `addRef` nonzero the caller gets a reference.
    template <class W = V, class = std::enable_if_t<CTMapValue<W>::kCounted>>
    int Lookup(K key, V& out, int addRef) {
        if (!Lookup(key, out))
            return 0;
        if (addRef != 0)
            Values::Retain(out);
        return 1;
    }

    int Remove(K key) {
        if (closing)
            return 0;
        const DWORD hash = Keys::Hash(key);
        for (Node** link = Bucket(hash); *link != nullptr; link = &(*link)->next) {
            if ((*link)->hash != hash)
                continue;
            Node* node = *link;
            *link = node->next;
            --count;
            FreeNode(node);
            return 1;
        }
        return 0;
    }

    // Frees every entry and the table, and closes the map: Set and Remove
    // refuse from then on, as a destructor needs. Clear reopens it. Each
    // bucket is emptied before its chain is freed, so that a value's
    // destructor that looks up a key meets only entries still alive.
    void RemoveAll() {
        if (closing || tableMark == 0)
            return;
        closing = 1;
        for (DWORD i = 0; i < tableSize; ++i) {
            Node* chain = table[i];
            table[i] = nullptr;
            while (chain != nullptr) {
                Node* next = chain->next;
                --count;
                FreeNode(chain);
                chain = next;
            }
        }
        delete[] table;
        table = nullptr;
        tableMark = 0;
    }

    // A Clear from a value's destructor while RemoveAll runs leaves the map
    // closed: reopened, it would take entries behind the sweep.
    void Clear() {
        RemoveAll();
        if (table == nullptr)
            closing = 0;
    }

    // One step of a walk: buckets in ascending order, each chain from its
    // newest entry to its oldest. Null at the end, which also resets the
    // position, or when the map is closed.
    K* NextKey(CTMapPosition& position) {
        Node* node = Step(position);
        return node != nullptr ? &node->key : nullptr;
    }
    V* NextValue(CTMapPosition& position) {
        Node* node = Step(position);
        return node != nullptr ? &node->value : nullptr;
    }

    DWORD GetCount() const { return count; }

protected:
    using Keys = CTMapKey<K>;
    using Values = CTMapValue<V>;

    void CreateTable() {
        if (tableMark != 0)
            return;
        if (heap == nullptr)
            heap = Mem_DefaultHeap(0);
        table = new Node*[tableSize]();
        tableMark = kTableMark;
    }

    Node** Bucket(DWORD hash) {
        CreateTable();
        return &table[BucketOf(hash)];
    }

    // hash % tableSize by two multiplications: every lookup takes one, and a
    // division by a size known only at run time costs as much as the rest of
    // a lookup (the remainder of a 32-bit number by way of the fraction
    // 2^64 / tableSize, exact for every 32-bit hash and size).
    DWORD BucketOf(DWORD hash) const {
        const std::uint64_t fraction = bucketStep * hash;
        return static_cast<DWORD>((static_cast<unsigned __int128>(fraction) * tableSize) >> 64);
    }

    // A closed map has no table, and gets none: its destructor would not free
    // it.
    Node* Find(K key) { return FindHash(Keys::Hash(key)); }

    Node* FindHash(DWORD hash) {
        if (closing && table == nullptr)
            return nullptr;
        for (Node* node = *Bucket(hash); node != nullptr; node = node->next)
            if (node->hash == hash)
                return node;
        return nullptr;
    }

    static void FreeNode(Node* node) {
        Keys::Free(node->key);
        Values::Free(node->value);
        delete node;
    }

    Node* Step(CTMapPosition& position) {
        if (closing)
            return nullptr;
        CreateTable();
        Node* node = static_cast<Node*>(position.node);
        if (node != nullptr && node->next != nullptr) {
            position.node = node->next;
            return node->next;
        }
        if (node != nullptr)
            ++position.bucket;
        for (DWORD i = static_cast<DWORD>(position.bucket); i < tableSize; ++i) {
            if (table[i] != nullptr) {
                position.bucket = static_cast<int>(i);
                position.node = table[i];
                return table[i];
            }
        }
        position = CTMapPosition();
        return nullptr;
    }

    Node** table = nullptr;
    DWORD count = 0;
    IHeap* heap;
    DWORD tableSize;
    std::uint64_t bucketStep;  // 2^64 / tableSize, rounded up
    DWORD tableMark = 0;
    DWORD closing = 0;
};
