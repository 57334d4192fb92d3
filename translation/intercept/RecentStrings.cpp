#include "translation/intercept/RecentStrings.h"

#include <atomic>
#include <cstring>

#include "platform/CriticalSection.h"
#include "translation/SuppDictionary.h"

namespace kt {
namespace {

// 64 places of two cache lines each, by module and id: a place taken by
// another string is taken over.
constexpr unsigned kPlacesLog2 = 6;
constexpr unsigned kUnitsPerWord = 4;
constexpr unsigned kTextWords = 10;
constexpr size_t kLongestText = kTextWords * kUnitsPerWord - 1;  // and its terminator

// One remembered string under a sequence count: readers take no lock, and a
// reader that met a writer, or an odd count, goes the long way. The text is
// kept in words of four units, compared a word at a time.
struct alignas(64) Place {
    std::atomic<unsigned> sequence{0};
    std::atomic<unsigned> generation{0};
    std::atomic<HMODULE> module{nullptr};
    std::atomic<std::uint64_t> identity{0};
    std::atomic<UINT> id{0};
    std::atomic<int> loaded{0};
    std::atomic<const KTWCHAR*> translation{nullptr};
    std::atomic<size_t> translationLength{0};
    std::atomic<std::uint64_t> text[kTextWords] = {};
};

Place places[1u << kPlacesLog2];
sys::CriticalSection writing;

Place& PlaceOf(HMODULE module, UINT id) {
    const auto mixed = static_cast<std::uint32_t>((reinterpret_cast<std::uintptr_t>(module) >> 16) ^ id) * 0x9E3779B1u;
    return places[mixed >> (32 - kPlacesLog2)];
}

// Word `n` of a text of `units` units (its terminator counted), the units
// past its end as 0. The last word is shifted in unit by unit: a copy of a
// varying length would be a call to memcpy.
std::uint64_t WordOf(const KTWCHAR* text, size_t units, size_t n) {
    const size_t first = n * kUnitsPerWord;
    std::uint64_t word = 0;
    if (units - first >= kUnitsPerWord) {
        std::memcpy(&word, text + first, sizeof word);
        return word;
    }
    for (size_t k = 0; k < units - first; ++k)
        word |= std::uint64_t{static_cast<std::uint16_t>(text[first + k])} << (16 * k);
    return word;
}

size_t WordsFor(size_t units) { return (units + kUnitsPerWord - 1) / kUnitsPerWord; }

}  // namespace

unsigned RecentStringsGeneration() { return SuppDictionary().generation.load(std::memory_order_acquire); }

bool RecallString(const StringSource& source, const KTWCHAR* text, int loaded, StringOutcome& outcome) {
    // The system's count: with no 0 in the string, its length.
    if (loaded <= 0 || static_cast<size_t>(loaded) > kLongestText)
        return false;
    const Place& place = PlaceOf(source.module, source.id);
    const unsigned sequence = place.sequence.load(std::memory_order_acquire);
    if (sequence % 2 != 0 || place.generation.load(std::memory_order_relaxed) != source.generation ||
        place.module.load(std::memory_order_relaxed) != source.module ||
        place.id.load(std::memory_order_relaxed) != source.id ||
        place.identity.load(std::memory_order_relaxed) != source.identity ||
        place.loaded.load(std::memory_order_relaxed) != loaded)
        return false;
    const size_t units = static_cast<size_t>(loaded) + 1;
    for (size_t n = 0; n < WordsFor(units); ++n)
        if (place.text[n].load(std::memory_order_relaxed) != WordOf(text, units, n))
            return false;
    const StringOutcome read = {place.translation.load(std::memory_order_relaxed),
                                place.translationLength.load(std::memory_order_relaxed)};
    std::atomic_thread_fence(std::memory_order_acquire);
    if (place.sequence.load(std::memory_order_relaxed) != sequence)
        return false;
    outcome = read;
    return true;
}

void RememberString(const StringSource& source, const KTWCHAR* text, size_t length, int loaded,
                    StringOutcome outcome) {
    // A string with a 0 inside is measured to it, not by the system's count.
    if (loaded <= 0 || length != static_cast<size_t>(loaded) || length > kLongestText || source.identity == 0)
        return;
    Place& place = PlaceOf(source.module, source.id);
    sys::ScopedLock hold(writing);
    const unsigned sequence = place.sequence.load(std::memory_order_relaxed);
    place.sequence.store(sequence + 1, std::memory_order_relaxed);
    std::atomic_thread_fence(std::memory_order_release);
    place.generation.store(source.generation, std::memory_order_relaxed);
    place.module.store(source.module, std::memory_order_relaxed);
    place.identity.store(source.identity, std::memory_order_relaxed);
    place.id.store(source.id, std::memory_order_relaxed);
    place.loaded.store(loaded, std::memory_order_relaxed);
    place.translation.store(outcome.translation, std::memory_order_relaxed);
    place.translationLength.store(outcome.translationLength, std::memory_order_relaxed);
    for (size_t n = 0; n < WordsFor(length + 1); ++n)
        place.text[n].store(WordOf(text, length + 1, n), std::memory_order_relaxed);
    place.sequence.store(sequence + 2, std::memory_order_release);
}

void ForgetRecentStrings() { SuppDictionary().generation.fetch_add(1, std::memory_order_release); }

}  // namespace kt
