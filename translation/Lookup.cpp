// The lookups of the dictionary, from the plain ones to the keyed order that
// every resource text passes through. A key is found by its hash alone.
#include "translation/Lookup.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "kticore/translation/Translation.h"
#include "translation/SuppDictionary.h"

namespace {

using kt::CContext;
using kt::SuppDictionary;

template <class Unit>
size_t LengthOf(const Unit* text) {
    return std::char_traits<Unit>::length(text);
}

template <class Unit>
bool IsEmpty(const Unit* text) {
    return text == nullptr || *text == 0;
}

// prefix + text into `composed`, which holds `capacity` units; false when
// they do not fit, and the keyed lookup is then skipped.
template <class Unit>
bool Compose(Unit* composed, unsigned capacity, const Unit* prefix, const Unit* text) {
    const size_t prefixLength = LengthOf(prefix);
    const size_t textLength = LengthOf(text);
    if (prefixLength + textLength >= capacity)
        return false;
    std::char_traits<Unit>::copy(composed, prefix, prefixLength);
    std::char_traits<Unit>::copy(composed + prefixLength, text, textLength + 1);
    return true;
}

// strncpy and wcsncpy: the translation cut at `capacity`, without terminator
// where it fills it, the rest of the buffer zeroed.
template <class Unit>
void CopyPadded(Unit* buffer, unsigned capacity, const Unit* text, size_t length) {
    const size_t copied = std::min<size_t>(length, capacity);
    std::char_traits<Unit>::copy(buffer, text, copied);
    std::fill(buffer + copied, buffer + capacity, Unit(0));
}

const char* LookupOf(const char* text, int exact) { return Supp_LookupA(text, exact); }
const KTWCHAR* LookupOf(const KTWCHAR* text, int exact) { return Supp_LookupW(text, exact); }

constexpr unsigned ComposedCapacity(char) { return kKeyedCapacityA; }
constexpr unsigned ComposedCapacity(KTWCHAR) { return kKeyedCapacityW; }

template <class Unit>
unsigned TranslateKeyed(Unit* buffer, unsigned capacity, const Unit* prefix, int measure) {
    const Unit* found = nullptr;
    if (prefix != nullptr) {
        Unit composed[ComposedCapacity(Unit())];
        if (Compose(composed, ComposedCapacity(Unit()), prefix, buffer))
            found = LookupOf(composed, 1);
    }
    if (found == nullptr)
        found = LookupOf(buffer, 0);
    if (found == nullptr)
        return 0;
    const size_t length = LengthOf(found);
    if (measure == 0 && found != buffer)
        CopyPadded(buffer, capacity, found, length);
    return static_cast<unsigned>(length);
}

}  // namespace

const KTWCHAR* Supp_LookupW(const KTWCHAR* text, int exact) {
    if (IsEmpty(text))
        return nullptr;
    if (CContext* entry = SuppDictionary().Find(text))
        return entry->WideForm();
    return exact != 0 ? nullptr : text;
}

const char* Supp_LookupA(const char* text, int exact) {
    if (IsEmpty(text))
        return nullptr;
    const CContext* entry = SuppDictionary().Find(CXStringW(text));
    if (entry != nullptr && entry->value.GetSize() != 0)
        return entry->value;
    return exact != 0 ? nullptr : text;
}

int Supp_TranslateBufferA(char* buffer, unsigned capacity) {
    if (IsEmpty(buffer))
        return 0;
    const CContext* entry = SuppDictionary().Find(CXStringW(buffer));
    if (entry != nullptr && entry->value.GetSize() != 0)
        return static_cast<int>(entry->value.CopyFit(buffer, capacity));
    return static_cast<int>(LengthOf(buffer));
}

int Supp_TranslateBufferW(KTWCHAR* buffer, unsigned capacity) {
    if (IsEmpty(buffer))
        return 0;
    if (CContext* entry = SuppDictionary().Find(buffer))
        return static_cast<int>(CXStringW(entry->WideForm()).CopyFit(buffer, capacity));
    return static_cast<int>(LengthOf(buffer));
}

const KTWCHAR* Supp_LookupKeyedW(const KTWCHAR* text, const KTWCHAR* prefix) {
    if (prefix != nullptr) {
        KTWCHAR composed[kKeyedCapacityW];
        if (Compose(composed, kKeyedCapacityW, prefix, IsEmpty(text) ? KTW("") : text))
            if (const KTWCHAR* found = Supp_LookupW(composed, 1))
                return found;
    }
    return Supp_LookupW(text, 0);
}

unsigned Supp_TranslateKeyedA(char* buffer, unsigned capacity, const char* prefix, int measure) {
    return TranslateKeyed(buffer, capacity, prefix, measure);
}

unsigned Supp_TranslateKeyedW(KTWCHAR* buffer, unsigned capacity, const KTWCHAR* prefix,
                              int measure) {
    return TranslateKeyed(buffer, capacity, prefix, measure);
}

const KTWCHAR* Supp_Translate(const KTWCHAR* text) {
    if (IsEmpty(text))
        return nullptr;
    CContext* entry = SuppDictionary().Find(text);
    return entry != nullptr ? entry->WideForm() : text;
}

const KTWCHAR* Supp_Translate(const KTWCHAR* text, const KTWCHAR* prefix) {
    if (IsEmpty(text))
        return nullptr;
    if (SuppDictionary().texts.GetCount() == 0)
        return text;
    return Supp_LookupKeyedW(text, prefix);
}

const KTWCHAR* Supp_Translate(const char* text) {
    if (IsEmpty(text))
        return nullptr;
    const CXString source(text);
    return SuppDictionary().Add(source, source)->WideForm();
}
