#include "tools/kttool/TextChecks.h"

#include <algorithm>

namespace kttool {
namespace {

bool IsDigit(KTWCHAR c) { return c >= '0' && c <= '9'; }
bool IsOneOf(KTWCHAR c, const char* set) {
    for (; *set != 0; ++set)
        if (c == static_cast<KTWCHAR>(*set))
            return true;
    return false;
}

size_t SkipDigits(const WideText& text, size_t at) {
    while (at < text.size() && IsDigit(text[at]))
        ++at;
    return at;
}

// A width or precision: digits, or '*' taken from the arguments.
size_t SkipCount(const WideText& text, size_t at) {
    return at < text.size() && text[at] == '*' ? at + 1 : SkipDigits(text, at);
}

struct Placeholder {
    size_t end;
    WideText token;
    bool positional;
};

// The placeholder that begins at text[at]; an end of `at` for none.
Placeholder ParseAt(const WideText& text, size_t at) {
    const size_t size = text.size();
    if (text[at] == '{') {
        const size_t digits = SkipDigits(text, at + 1);
        if (digits > at + 1 && digits < size && text[digits] == '}')
            return {digits + 1, text.substr(at, digits + 1 - at), true};
        return {at, {}, false};
    }
    if (text[at] != '%' || at + 1 >= size)
        return {at, {}, false};
    if (text[at + 1] == '%')
        return {at + 2, {}, false};
    size_t p = at + 1;
    WideText position;
    const size_t digits = SkipDigits(text, p);
    if (digits > p && digits < size && text[digits] == '$') {
        position = text.substr(p, digits + 1 - p);
        p = digits + 1;
    }
    const size_t conversionStart = p;
    while (p < size && IsOneOf(text[p], "-+ #0'"))
        ++p;
    p = SkipCount(text, p);
    if (p < size && text[p] == '.')
        p = SkipCount(text, p + 1);
    const size_t lengthStart = p;
    while (p < size && IsOneOf(text[p], "hlLqjztIw36"))
        ++p;
    if (p < size && IsOneOf(text[p], "diouxXeEfFgGaAcCsSpn")) {
        WideText token = position + text.substr(lengthStart, p + 1 - lengthStart);
        return {p + 1, std::move(token), !position.empty()};
    }
    // FormatMessage's inserts: %1 to %99, with an optional !format!.
    const size_t insert = SkipDigits(text, at + 1);
    if (insert > at + 1 && position.empty() && conversionStart == at + 1) {
        size_t end = insert;
        if (end < size && text[end] == '!') {
            const size_t close = text.find(KTWCHAR('!'), end + 1);
            if (close != WideText::npos)
                end = close + 1;
        }
        return {end, text.substr(at, end - at), true};
    }
    return {at + 1, {}, false};
}

template <class Visit>
void ForEachPlaceholder(const WideText& text, const Visit& visit) {
    for (size_t at = 0; at < text.size();) {
        const Placeholder found = ParseAt(text, at);
        if (!found.token.empty())
            visit(at, found);
        at = std::max(found.end, at + 1);
    }
}

}  // namespace

Placeholders PlaceholdersOf(const WideText& text) {
    Placeholders found;
    ForEachPlaceholder(text, [&](size_t, const Placeholder& placeholder) {
        (placeholder.positional ? found.positional : found.ordered).push_back(placeholder.token);
    });
    std::sort(found.positional.begin(), found.positional.end());
    return found;
}

std::vector<std::pair<size_t, size_t>> PlaceholderSpans(const WideText& text) {
    std::vector<std::pair<size_t, size_t>> spans;
    ForEachPlaceholder(text, [&](size_t at, const Placeholder& placeholder) {
        spans.emplace_back(at, placeholder.end);
    });
    return spans;
}

size_t AcceleratorCount(const WideText& text) {
    size_t count = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '&')
            continue;
        if (at + 1 < text.size() && text[at + 1] == '&')
            ++at;
        else
            ++count;
    }
    return count;
}

KTWCHAR AcceleratorLetter(const WideText& text) {
    for (size_t at = 0; at + 1 < text.size(); ++at) {
        if (text[at] != '&')
            continue;
        const KTWCHAR letter = text[at + 1];
        if (letter == '&') {
            ++at;
            continue;
        }
        return letter >= 'A' && letter <= 'Z' ? static_cast<KTWCHAR>(letter - 'A' + 'a') : letter;
    }
    return 0;
}

WideText ShortcutPart(const WideText& text) {
    const size_t tab = text.find(kShortcutSeparator);
    return tab == WideText::npos ? WideText() : text.substr(tab + 1);
}

}  // namespace kttool
