// The reader of `wld` dictionary files: narrow text, one quoted string to a
// line, strings pairing up as key and value across comments and other
// ignored lines, an empty line or the end of the file closing the dictionary.
#pragma once

#include <string>

#include "kticore/files/File.h"
#include "kticore/strings/XString.h"

namespace kt {

// The longest line, in bytes; the rest of a longer line is a line of its own.
constexpr int kWldLineCapacity = 8192;

// The key whose value names the language of the file's translations.
constexpr char kWldLanguageKey[] = "KT_WLD_LANG_ID";

class KTCORE_API WldReader {
public:
    // Reads `file` from its position; the caller keeps its reference.
    explicit WldReader(IXFile* file);
    WldReader(const WldReader&) = delete;
    WldReader& operator=(const WldReader&) = delete;

    // The next pair, escapes undone; false at the end of the dictionary. A key
    // with no value behind it (an empty line or the end of the file follows)
    // comes with itself as value. Failures of the file are thrown.
    bool Next(CXString& key, CXString& value);

    // The value of the last language key read, by atoi; 0 if none.
    unsigned LanguageId() const { return languageId; }
    // Whether the last pair's key is the language key: compared as the file
    // holds it, before escapes are undone.
    bool IsLanguageKey() const { return rawKey == kWldLanguageKey; }

    // Where the lines of the last pair begin in the file: the value's is the
    // key's when the key came without one. For tools that name lines.
    DWORD KeyLineStart() const { return keyLineStart; }
    DWORD ValueLineStart() const { return valueLineStart; }

private:
    enum class Line { String, Empty, End };

    // Reads lines until one holds a string, or until an empty line or the
    // end of the file; `lineStart` is where the string's line begins.
    Line NextString(std::string& text, DWORD& lineStart);

    IXFile* file;
    char line[kWldLineCapacity + 1];
    // The pair as the file holds it, and a text with its escapes undone.
    std::string rawKey;
    std::string rawValue;
    std::string unescaped;
    bool ended = false;
    unsigned languageId = 0;
    DWORD keyLineStart = 0;
    DWORD valueLineStart = 0;
};

}  // namespace kt
