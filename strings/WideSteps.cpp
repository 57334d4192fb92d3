#include "strings/WideSteps.h"

#include <cstdint>
#include <string>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kt {

static_assert(sizeof(KTWCHAR) == 2, "the steps compare 16-bit units");

#if defined(__SSE2__)

// Each load is aligned, so it never reaches into another page than the units
// it must read; the bytes around the text that it also reads are not looked
// at. A text at an odd address is walked a unit at a time.
__attribute__((no_sanitize_address)) size_t WideLength(const KTWCHAR* text) {
    const auto address = reinterpret_cast<std::uintptr_t>(text);
    if (address % sizeof(KTWCHAR) != 0)
        return std::char_traits<KTWCHAR>::length(text);
    constexpr std::uintptr_t kStepBytes = sizeof(__m128i);
    const __m128i zero = _mm_setzero_si128();
    const auto* step = reinterpret_cast<const __m128i*>(address & ~(kStepBytes - 1));
    const unsigned before = static_cast<unsigned>(address % kStepBytes);
    unsigned terminators = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_load_si128(step), zero)));
    terminators = terminators >> before << before;
    while (terminators == 0)
        terminators = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_load_si128(++step), zero)));
    const auto end = reinterpret_cast<std::uintptr_t>(step) + static_cast<unsigned>(__builtin_ctz(terminators));
    return (end - address) / sizeof(KTWCHAR);
}

#else

size_t WideLength(const KTWCHAR* text) { return std::char_traits<KTWCHAR>::length(text); }

#endif

}  // namespace kt
