// Reaches the protected estimate of Format, for tests and fuzzing.
#pragma once

#include <cstdarg>

template <class String, class Unit>
struct FormatEstimate : String {
    int operator()(const Unit* format, ...) {
        va_list args;
        va_start(args, format);
        const int estimate = this->FormatV(format, args);
        va_end(args);
        return estimate;
    }
};

// Calls `call` with the arguments of one conversion: the width and the
// precision where the conversion takes them from '*', then the value.
template <class Call, class Value>
void WithStarArguments(Call call, bool starWidth, bool starPrecision, int width, int precision,
                       Value value) {
    if (starWidth && starPrecision)
        call(width, precision, value);
    else if (starWidth)
        call(width, value);
    else if (starPrecision)
        call(precision, value);
    else
        call(value);
}
