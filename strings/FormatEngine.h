// Formatting in the manner of sprintf, for narrow and 16-bit formats alike,
// with one set of conventions on every build: in a narrow format %s is narrow
// text and %S 16-bit text, in a 16-bit format the other way round; 'h' and 'l'
// name the width outright. Text of the other width is converted in the ANSI
// code page. Integers are 32 bits ('h': 16); %p prints 16 upper-case hex
// digits; reals print as the C library prints them.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <functional>

namespace kt::format {

// Memory that the printed text will be written to. The estimate tells
// whether a text argument lies in it, since such text must be read before the
// memory is overwritten.
struct Region {
    const void* begin;
    const void* end;
    bool holdsArgument = false;

    bool Holds(const void* p) const {
        return std::less_equal<const void*>()(begin, p) && std::less<const void*>()(p, end);
    }
};

// An upper bound of the length of the text that Print writes for `format`
// and `args`, found by walking the format without writing. `args` is left as
// it was.
template <class Unit>
long long Estimate(const Unit* format, va_list args, Region* target = nullptr);

// Prints into `out`, which holds `capacity` units, at most `capacity - 1` of
// them and a terminator. Returns the length of the whole text, which is more
// than was written when the text did not fit. `args` is left as it was.
template <class Unit>
size_t Print(Unit* out, size_t capacity, const Unit* format, va_list args);

}  // namespace kt::format
