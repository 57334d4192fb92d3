// The marked value text: one marker character that names the kind, then the
// value as text. It is the value notation of the text form of a tree and of
// the private profile file.
#pragma once

#include <string>

#include "kticore/values/Variant.h"

namespace kt::params {

// Bytes of the hexadecimal text of a blob: a blob that needs more is written
// with no digits, and reads back empty.
inline constexpr size_t kBlobTextLimit = 65536;

// Appends marker and text of `value`; false, with nothing appended, for a kind
// that has no marker (objects and wide text among them).
bool AppendMarkedValue(std::string& out, const tagKTVARIANT& value);

// Reads marked text into `value`; false for an unknown marker or a text that
// fails its kind's rule, and then `value` is left as it was.
bool ReadMarkedValue(const char* text, CKTVariant& value);

}  // namespace kt::params
