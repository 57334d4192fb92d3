#include "translation/WldReader.h"

#include <cstdlib>

#include "platform/MultiByte.h"
#include "strings/MultiByteText.h"
#include "strings/SpaceCharacters.h"
#include "translation/WldEscapes.h"

namespace kt {

namespace {

// _ismbcspace: ASCII answers for itself, other characters ask the code page.
bool IsSpaceAt(const char* p) {
    if (static_cast<unsigned char>(*p) < 0x80)
        return text::IsSpaceByte(*p);
    return sys::IsSpaceCharacter(mbcs::CodeAt(p));
}

// The string that a line holds, as the range [first, last): the line
// stripped of white space at both ends, by characters, without its first and
// its last character, which are taken to be the quotes. False for a comment
// and for a line that does not begin with a quote or is shorter than two
// characters.
bool StringOfLine(const char* line, const char*& first, const char*& last) {
    if (line[0] == ';')
        return false;
    const char* start = line;
    while (*start != 0 && IsSpaceAt(start))
        start = mbcs::Next(start);
    if (*start != '"')
        return false;
    last = start;  // the last character that is not white space
    for (const char* p = start; *p != 0; p = mbcs::Next(p))
        if (!IsSpaceAt(p))
            last = p;
    first = start + 1;
    return last != start;
}

}  // namespace

WldReader::WldReader(IXFile* file) : file(file) {}

bool WldReader::Next(CXString& key, CXString& value) {
    if (ended || NextString(rawKey, keyLineStart) != Line::String) {
        ended = true;
        return false;
    }
    const Line valueLine = NextString(rawValue, valueLineStart);
    if (valueLine != Line::String) {
        rawValue = rawKey;
        valueLineStart = keyLineStart;
        ended = valueLine == Line::End;
    }
    if (IsLanguageKey())
        languageId = static_cast<unsigned>(std::atoi(rawValue.c_str()));
    UndoWldEscapes(rawKey.data(), rawKey.size(), unescaped);
    key = unescaped.c_str();
    UndoWldEscapes(rawValue.data(), rawValue.size(), unescaped);
    value = unescaped.c_str();
    return true;
}

WldReader::Line WldReader::NextString(std::string& text, DWORD& lineStart) {
    for (;;) {
        const DWORD before = file->GetPosition();
        // Nothing before the line feed, or nothing at all: an empty line has
        // moved the position by its line feed, the end of the file has not.
        if (file->ReadLine(line, kWldLineCapacity) == 0)
            return file->GetPosition() != before ? Line::Empty : Line::End;
        const char* first = nullptr;
        const char* last = nullptr;
        if (StringOfLine(line, first, last)) {
            text.assign(first, last);
            lineStart = before;
            return Line::String;
        }
    }
}

}  // namespace kt
