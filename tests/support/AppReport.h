// The report an example application writes in its test modes: lines
// "<phase>\t<item>\t<text>" in UTF-16, read back by phase and item name.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/support/ScratchDirectory.h"

namespace kt::test {

// Item texts by item name ("<module>|<kind>|<id>|<detail>"), by phase.
using Items = std::map<std::string, std::wstring>;
using Phases = std::map<std::string, Items>;

// The fields of `text` between `separator`s.
template <class Text>
std::vector<Text> Split(const Text& text, typename Text::value_type separator) {
    std::vector<Text> fields;
    size_t start = 0;
    for (size_t end; (end = text.find(separator, start)) != Text::npos; start = end + 1)
        fields.push_back(text.substr(start, end - start));
    fields.push_back(text.substr(start));
    return fields;
}

// Item names and phases are ASCII.
inline std::string Ascii(const std::wstring& text) { return std::string(text.begin(), text.end()); }

inline Phases ParseReport(const WideString& path) {
    const std::string bytes = ContentOf(path);
    const std::wstring text(reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t));
    Phases phases;
    // A text may hold tabs itself (a menu item's shortcut part).
    for (const std::wstring& line : Split(text, L'\n')) {
        const size_t itemAt = line.find(L'\t');
        const size_t textAt = itemAt != std::wstring::npos ? line.find(L'\t', itemAt + 1) : std::wstring::npos;
        if (textAt != std::wstring::npos)
            phases[Ascii(line.substr(0, itemAt))][Ascii(line.substr(itemAt + 1, textAt - itemAt - 1))] =
                line.substr(textAt + 1);
    }
    return phases;
}

}  // namespace kt::test
