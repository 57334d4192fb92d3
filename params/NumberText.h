// Numbers in the text form of a tree, read and written the same way on every
// build and in every locale: a real always has a decimal point, and nothing
// here asks or changes the process's locale.
#pragma once

#include <cstdint>
#include <string>

namespace kt::params {

// A 32-bit integer as strtol (signed) or strtoul (unsigned) of a 32-bit
// runtime reads it: blanks, a sign, the digits of `base` (16 allows a "0x"
// in front). Out of range it holds at the limit. Returns where the digits
// end, or null when no digit was consumed.
const char* ReadInteger(const char* text, int base, bool isSigned, std::uint32_t& value);

// A real as strtod reads it: blanks, a sign, a decimal or hexadecimal
// number, "inf" or "nan". Returns where it ends, or null when no digit was
// consumed.
const char* ReadReal(const char* text, double& value);

// Appends the real with 14 significant digits, in the shortest of the fixed
// and the exponent form ("1.5", "3", "1e+20").
void AppendReal(std::string& out, double value);
void AppendUnsigned(std::string& out, std::uint32_t value);
void AppendSigned(std::string& out, std::int32_t value);

}  // namespace kt::params
