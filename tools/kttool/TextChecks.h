// What a translation must keep of its source text: printf conversions in
// their order, positional placeholders in any order, as many `&`
// accelerators, and a menu text's shortcut part behind its tab.
#pragma once

#include <string>
#include <vector>

#include "tools/kttool/PeResources.h"

namespace kttool {

struct Placeholders {
    // printf conversions taken in turn: length modifier and type, "ld".
    std::vector<WideText> ordered;
    // Placeholders that name their argument, sorted: "%1$s", "%2", "{0}".
    std::vector<WideText> positional;
};

Placeholders PlaceholdersOf(const WideText& text);

// Where a placeholder or conversion lies: [start, end) of each, in order.
std::vector<std::pair<size_t, size_t>> PlaceholderSpans(const WideText& text);

// Single `&` marks; "&&" is a literal ampersand.
size_t AcceleratorCount(const WideText& text);
// The letter behind the first mark, in lower case for ASCII; 0 for none.
KTWCHAR AcceleratorLetter(const WideText& text);

constexpr KTWCHAR kShortcutSeparator = '\t';
// What stands behind the first tab, or nothing.
WideText ShortcutPart(const WideText& text);

}  // namespace kttool
