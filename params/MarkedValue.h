// The marked value text: one marker character that names the kind, then the
// value as text. It is the value notation of the text form of a tree and of
// the private profile file.
#pragma once

#include <cstdint>
#include <string>

#include "kticore/values/Variant.h"

namespace kt::params {

// Bytes of the hexadecimal text of a blob: a blob that needs more is written
// with no digits, and reads back empty.
inline constexpr size_t kBlobTextLimit = 65536;

// Appends marker and text of `value`; false, with nothing appended, for a kind
// that has no marker (objects and wide text among them). A blob whose marked
// text would take more than `longest` bytes is written with no digits, as one
// too long for the form always is: what has to fit a buffer stays whole.
bool AppendMarkedValue(std::string& out, const tagKTVARIANT& value, size_t longest = SIZE_MAX);

// Whether `text` holds a line end: it would start a line of its own, in the
// text form as in a profile file, and neither has a form for it.
inline bool HoldsLineEnd(const std::string& text) { return text.find_first_of("\r\n") != std::string::npos; }

// Reads marked text into `value`; false for an unknown marker or a text that
// fails its kind's rule, and then `value` is left as it was.
bool ReadMarkedValue(const char* text, CKTVariant& value);

}  // namespace kt::params
