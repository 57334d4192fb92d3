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
