// The header in front of the text of every string buffer, narrow or wide.
#pragma once

struct CXStringData {
    // Strings sharing the buffer, 1 or more; -1 while GetBuffer has it locked
    // (and always for the static empty string).
    int refs;
    // A record kept by the assigning operations; nothing reads it: sizes are
    // measured up to the terminator when they are needed.
    int length;
    // Bytes in the text area, terminator included.
    int alloc;
};

namespace kt {
// The one implementation of both string widths, and of their path operations.
template <class String, class Text>
struct StringOps;
template <class String, class Text>
struct PathOps;
struct NarrowText;
struct WideText;
}  // namespace kt
