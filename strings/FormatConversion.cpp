#include "strings/FormatConversion.h"

#include <climits>

namespace kt::format {

namespace {

// A decimal number, as atoi reads one behind the flags; huge ones saturate.
template <class Unit>
int ReadNumber(const Unit*& p) {
    long long number = 0;
    for (; *p >= '0' && *p <= '9'; ++p)
        number = number < INT_MAX ? number * 10 + (*p - '0') : number;
    return number < INT_MAX ? static_cast<int>(number) : INT_MAX;
}

}  // namespace

template <class Unit>
Kind Conversion<Unit>::kind() const {
    switch (letter) {
        case 'c':
        case 'C':
            return Kind::Char;
        case 's':
        case 'S':
            return Kind::Text;
        case 'e':
        case 'f':
        case 'g':
        case 'G':
            return Kind::Float;
        case 'd':
        case 'i':
        case 'o':
        case 'u':
        case 'x':
        case 'X':
            return Kind::Integer;
        case 'p':
            return Kind::Pointer;
        case 'n':
            return Kind::Count;
        default:
            return Kind::Unknown;
    }
}

template <class Unit>
const Unit* ReadConversion(const Unit* p, Arguments& args, Conversion<Unit>& c) {
    for (;; ++p) {
        if (*p == '#')
            ++c.alternateFlags;
        else if (*p == '*')
            c.width = va_arg(args.list, int);
        else if (*p == '-')
            c.leftAlign = true;
        else if (*p == '+')
            c.plusSign = true;
        else if (*p == '0')
            c.zeroPad = true;
        else if (*p == ' ')
            c.blankSign = true;
        else
            break;
    }
    if (c.width == 0)
        c.width = ReadNumber(p);
    if (*p == '.') {
        ++p;
        c.precisionGiven = true;
        if (*p == '*') {
            ++p;
            c.precision = va_arg(args.list, int);
            c.precisionGiven = c.precision >= 0;  // a negative one is none
        } else {
            c.precision = ReadNumber(p);
        }
    }
    if (*p == 'F' || *p == 'L' || *p == 'N') {
        ++p;
    } else if (*p == 'h') {
        c.size = SizePrefix::Narrow;
        ++p;
    } else if (*p == 'l') {
        c.size = SizePrefix::Wide;
        ++p;
    }
    c.letter = *p;
    return *p != 0 ? p + 1 : p;
}

template struct Conversion<char>;
template struct Conversion<KTWCHAR>;
template const char* ReadConversion(const char*, Arguments&, Conversion<char>&);
template const KTWCHAR* ReadConversion(const KTWCHAR*, Arguments&, Conversion<KTWCHAR>&);

}  // namespace kt::format
