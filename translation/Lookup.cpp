// The lookups of the dictionary, from the plain ones to the keyed order that
// every resource text passes through. A key is found by its hash alone.
#include "translation/Lookup.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "kticore/core/Map.h"
#include "kticore/translation/Translation.h"
#include "strings/WideSteps.h"
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

size_t LengthOfFound(const char* found) { return LengthOf(found); }
size_t LengthOfFound(const KTWCHAR* found) { return kt::WideLength(found); }

// What a keyed translation leaves in the buffer: `found`, of `length`
// units, cut to fit unless only measured; that length, or 0 for none.
template <class Unit>
unsigned Deliver(Unit* buffer, unsigned capacity, const Unit* found, size_t length, int measure) {
    if (found == nullptr)
        return 0;
    if (measure == 0 && found != buffer)
        CopyPadded(buffer, capacity, found, length);
    return static_cast<unsigned>(length);
}

template <class Unit>
unsigned Deliver(Unit* buffer, unsigned capacity, const Unit* found, int measure) {
    return Deliver(buffer, capacity, found, found != nullptr ? LengthOfFound(found) : 0, measure);
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

// Narrow keys are composed and widened as the dictionary's files give them.
unsigned Supp_TranslateKeyedA(char* buffer, unsigned capacity, const char* prefix, int measure) {
    const char* found = nullptr;
    if (prefix != nullptr) {
        char composed[kKeyedCapacityA];
        if (Compose(composed, kKeyedCapacityA, prefix, buffer))
            found = Supp_LookupA(composed, 1);
    }
    if (found == nullptr)
        found = Supp_LookupA(buffer, 0);
    return Deliver(buffer, capacity, found, measure);
}

unsigned Supp_TranslateKeyedW(KTWCHAR* buffer, unsigned capacity, const KTWCHAR* prefix,
                              int measure) {
    if (prefix == nullptr)
        return kt::TranslateKeyedW(buffer, capacity, nullptr, measure);
    const kt::HashedText hashed = kt::HashText(prefix);
    return kt::TranslateKeyedW(buffer, capacity, &hashed, measure);
}

// A wide key is found by the hash of prefix and text joined, without
// composing them; the order and the limit are those of the narrow form.
unsigned kt::TranslateKeyedW(KTWCHAR* buffer, unsigned capacity, const HashedText* prefix, int measure) {
    HashedText text;
    if (const KTWCHAR* found = FindKeyedW(buffer, prefix, text))
        return Deliver(buffer, capacity, found, measure);
    return Deliver(buffer, capacity, text.length != 0 ? buffer : nullptr, text.length, measure);
}

const KTWCHAR* kt::FindKeyedW(const KTWCHAR* text, const HashedText* prefix, HashedText& hashed) {
    CSuppDictionary& dictionary = SuppDictionary();
    hashed = HashText(text);
    const size_t keyedLength = prefix != nullptr ? prefix->length + hashed.length : 0;
    if (keyedLength != 0 && keyedLength < kKeyedCapacityW)
        if (CContext* entry = dictionary.FindHash(Joined(*prefix, hashed).hash))
            return entry->WideForm();
    if (hashed.length != 0)
        if (CContext* entry = dictionary.FindHash(hashed.hash))
            return entry->WideForm();
    return nullptr;
}

unsigned kt::DeliverW(KTWCHAR* buffer, unsigned capacity, const KTWCHAR* translation, size_t length) {
    return Deliver(buffer, capacity, translation, length, 0);
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
