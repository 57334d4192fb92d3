// The estimate walks the format once. Ordinary characters count 1 each in a
// narrow format; in a 16-bit format each counts the units from it to the end
// of the format, a generous bound for the literal part. Conversions count as
// their letter says: a text its length, a number at least 32, a real at least
// 128, with width and precision. Where those figures could fall short of what
// is printed (a precision that cuts a padded text, a real with 300 digits
// before its point, a precision beyond 32 digits, the letter of an unknown
// conversion), the estimate counts what can be printed instead.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

#include "strings/FormatConversion.h"
#include "strings/FormatEngine.h"

namespace kt::format {

namespace {

constexpr long long kIntegerFloor = 32;
constexpr long long kRealFloor = 128;
constexpr long long kNullTextLength = 6;  // "(null)"
constexpr int kMaxIntegerDigits = 11;     // octal, 32 bits
constexpr int kDefaultRealPrecision = 6;

template <class Text>
long long TextLength(const Text* text) {
    return text != nullptr ? static_cast<long long>(std::char_traits<Text>::length(text))
                           : kNullTextLength;
}

template <class Unit>
long long TextItem(const Conversion<Unit>& c, Arguments& args, Region* target) {
    const bool wideFormat = sizeof(Unit) == sizeof(KTWCHAR);
    const void* text = nullptr;
    long long item;
    if (c.TakesWide(wideFormat)) {
        const KTWCHAR* wide = va_arg(args.list, const KTWCHAR*);
        text = wide;
        item = TextLength(wide);
    } else {
        const char* narrow = va_arg(args.list, const char*);
        text = narrow;
        item = TextLength(narrow);
    }
    if (target != nullptr && text != nullptr && target->Holds(text))
        target->holdsArgument = true;
    return std::max(item, 1LL);
}

template <class Unit>
long long RealBound(const Conversion<Unit>& c, double value) {
    const long long precision = c.precisionGiven ? c.precision : kDefaultRealPrecision;
    long long digitsBeforePoint = 1;
    if (std::isfinite(value) && std::fabs(value) >= 1)
        digitsBeforePoint =
            static_cast<long long>(std::log10(std::fabs(value))) + 2;  // + 1 for rounding up
    const long long printed = c.letter == 'f' ? 1 + digitsBeforePoint + 1 + precision
                                              : 1 + 1 + 1 + precision + 6;  // sign, point, e+308
    return std::max(printed, 5LL);                                          // "-inf", "-nan"
}

template <class Unit>
long long ConversionItem(const Conversion<Unit>& c, Arguments& args, Region* target) {
    const long long width = c.width;
    const long long fieldWidth = std::llabs(width);
    const long long precision = c.precision;
    const long long figure = width + precision;
    switch (c.kind()) {
        case Kind::Char:
        case Kind::Text: {
            long long item = 2;
            if (c.kind() == Kind::Text)
                item = TextItem(c, args, target);
            else
                (void)va_arg(args.list, int);
            if (precision > 0)
                item = std::min(item, precision);
            return std::max(item, fieldWidth);
        }
        case Kind::Float: {
            const double value = va_arg(args.list, double);
            return std::max({figure, kRealFloor, fieldWidth, RealBound(c, value)});
        }
        case Kind::Integer:
            (void)va_arg(args.list, int);
            return std::max({figure, kIntegerFloor, fieldWidth,
                             std::max(precision, 0LL + kMaxIntegerDigits) + 2});
        case Kind::Pointer:
            (void)va_arg(args.list, void*);
            return std::max({figure, kIntegerFloor, fieldWidth});
        case Kind::Count:
            (void)va_arg(args.list, int*);
            return 0;
        case Kind::Unknown:
            // Takes no argument, but Print writes the letter itself: counted,
            // so that the estimate stays an upper bound of what is printed.
            return 1;
    }
    return 0;
}

}  // namespace

template <class Unit>
long long Estimate(const Unit* format, va_list args, Region* target) {
    const bool wideFormat = sizeof(Unit) == sizeof(KTWCHAR);
    const long long formatLength = static_cast<long long>(std::char_traits<Unit>::length(format));
    Arguments walk;
    va_copy(walk.list, args);
    long long estimate = 0;
    for (const Unit* p = format; *p != 0;) {
        if (*p != '%' || p[1] == '%') {
            if (*p == '%')
                ++p;  // "%%" counts as its second '%'
            estimate += wideFormat ? formatLength - (p - format) : 1;
            ++p;
            continue;
        }
        Conversion<Unit> conversion;
        p = ReadConversion(p + 1, walk, conversion);
        estimate += 2LL * conversion.alternateFlags;  // also where the format ends behind them
        if (conversion.letter == 0)
            break;
        estimate += ConversionItem(conversion, walk, target);
    }
    va_end(walk.list);
    return estimate;
}

template long long Estimate(const char*, va_list, Region*);
template long long Estimate(const KTWCHAR*, va_list, Region*);

}  // namespace kt::format
