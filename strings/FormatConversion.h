// The reading of a printf-style format, shared by the estimate of a result's
// length and the printing itself, so that both agree on which conversion takes
// how many arguments. One conversion that takes an argument takes one slot of
// the list.
#pragma once

#include <cstdarg>

#include "kticore/platform/Platform.h"

namespace kt::format {

// The variable argument list, wrapped so that it can be handed on by
// reference whatever the ABI makes of va_list.
struct Arguments {
    va_list list;
};

enum class SizePrefix { None, Narrow, Wide };  // none, 'h', 'l'

enum class Kind {
    Char,     // c C
    Text,     // s S
    Float,    // e f g G
    Integer,  // d i o u x X
    Pointer,  // p
    Count,    // n
    Unknown,  // any other letter: takes no argument
};

template <class Unit>
struct Conversion {
    int width = 0;  // negative when taken from '*': left-aligned
    int precision = 0;
    bool precisionGiven = false;
    int alternateFlags = 0;  // the number of '#'
    bool leftAlign = false;
    bool plusSign = false;
    bool blankSign = false;
    bool zeroPad = false;
    SizePrefix size = SizePrefix::None;
    Unit letter = 0;  // 0 when the format ends inside the conversion

    Kind kind() const;
    // For Char and Text: whether the argument is 16-bit, in a format of the
    // given width. Without a prefix, lower case is the format's own width and
    // upper case the other one.
    bool TakesWide(bool wideFormat) const {
        if (size != SizePrefix::None)
            return size == SizePrefix::Wide;
        return (letter == 'c' || letter == 's') == wideFormat;
    }
};

// Reads the conversion that begins at `p`, just behind its '%', taking the
// arguments that '*' asks for. Returns the position behind its letter, or that
// of the terminator.
template <class Unit>
const Unit* ReadConversion(const Unit* p, Arguments& args, Conversion<Unit>& conversion);

}  // namespace kt::format
