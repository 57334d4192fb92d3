// A `wld` file read by the dictionary's own reader, each pair with the lines
// it stands on.
#pragma once

#include <string>
#include <vector>

#include "tools/kttool/PeResources.h"

namespace kttool {

struct WldEntry {
    std::string key;  // escapes undone, narrow as the file holds it
    std::string value;
    unsigned keyLine = 0;  // from 1
    unsigned valueLine = 0;
    bool isLanguage = false;  // the key that names the language, as the reader tells it
};

struct WldEntries {
    std::vector<WldEntry> entries;
    unsigned languageId = 0;  // as the reader takes it, 0 for none
    // The empty line that ended the dictionary with quoted strings behind it,
    // which the reader never sees; 0 for none.
    unsigned endingLine = 0;
};

// Throws std::runtime_error for a file that cannot be read, or that is not
// dictionary text: one with NUL bytes, or without any entry.
WldEntries ReadWldEntries(const std::string& path);

}  // namespace kttool
