// Numbers as text, read and written the same way on every build and in every
// locale: a real always has a decimal point, and nothing here asks or changes
// the process's locale. The text form of a tree and the conversions of
// variants share them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "kticore/platform/Platform.h"

namespace kt::number {

// A 32-bit integer as strtol (signed) or strtoul (unsigned) of a 32-bit
// runtime reads it: blanks, a sign, the digits of `base` (16 allows a "0x"
// in front). Out of range it holds at the limit. Returns where the digits
// end, or null when no digit was consumed.
const char* ReadInteger(const char* text, int base, bool isSigned, std::uint32_t& value);

// A decimal integer as scanf's %d and %u read it: blanks, a sign, digits.
// Like the runtime's scanner, the number runs over silently: the low 32 bits
// are kept, and a minus sign negates for %u too, so both read the same bits.
// Returns where the digits end, or null when no digit was consumed.
template <class Unit>
const Unit* ScanDecimal(const Unit* text, std::uint32_t& value);

// A real as strtod reads it: blanks, a sign, a decimal or hexadecimal
// number, "inf" or "nan". Returns where it ends, or null when no digit was
// consumed.
const char* ReadReal(const char* text, double& value);

// A real as scanf's %lf and %f read it (Real is double or float; a float is
// rounded once, straight from the text), with `decimalPoint` as the point,
// over narrow or 16-bit text. Like strtod, except where the scanner has
// consumed more than it can give back: "0x" without a hexadecimal digit or
// a point after it, and "inf" followed by a part of "inity", fail. Returns
// where the number ends, or null when the scan fails.
template <class Unit, class Real>
const Unit* ScanReal(const Unit* text, Real& value, char decimalPoint);

// The significant digits that the text form of a tree writes for a real, and
// those of printf's %g.
constexpr int kTreeRealDigits = 14;
constexpr int kShortRealDigits = 6;

// Appends the real with that many significant digits, in the shortest of the
// fixed and the exponent form ("1.5", "3", "1e+20"), as printf's %g writes it
// in the C locale.
void AppendReal(std::string& out, double value, int significantDigits = kTreeRealDigits);
void AppendUnsigned(std::string& out, std::uint32_t value);
void AppendSigned(std::string& out, std::int32_t value);

// The same, written at `out`, which has room for kLongestNumber characters
// (a real of at most 17 significant digits); they return the end of the text
// and write no terminator.
constexpr size_t kLongestNumber = 32;
char* WriteReal(char* out, double value, int significantDigits);
char* WriteUnsigned(char* out, std::uint32_t value);
char* WriteSigned(char* out, std::int32_t value);

}  // namespace kt::number
