// What a stream of a compound file holds, as kttool shows it: the stored
// variant at its start, told by kind and value, or bytes that are none.
#pragma once

#include <string>

#include "kticore/streams/Stream.h"

namespace kttool {

struct StreamContent {
    // The stream begins with a whole stored variant.
    bool isValue = false;
    // Its kind and value ("int 640"); empty when the bytes are no value.
    std::string description;
    // Bytes behind the stored variant, which no reader looks at (a shorter
    // value written over a longer one leaves them).
    unsigned unread = 0;
};

// Reads `stream` from its start. Bytes are a stored variant when they read
// as one and that variant writes back to the very same bytes: a stream cut
// short, or one that merely begins with a known kind, is not.
StreamContent ReadStreamContent(IXStream* stream);

// The kind of a variant and its value, on one line: texts quoted with
// escapes, blobs by size and first bytes, objects by class name and length.
std::string DescribeValue(const tagKTVARIANT& value);

// Narrow text as DescribeValue shows it, without the quotes: `\`, `"` and
// what is not printable ASCII escaped.
std::string Escaped(const char* text);

}  // namespace kttool
