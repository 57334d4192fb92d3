#include "translation/WldReader.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/MultiByte.h"
#include "strings/MultiByteText.h"
#include "translation/WldEscapes.h"

namespace kt {

namespace {

bool IsSpaceAt(const char* p) { return sys::IsSpaceCharacter(mbcs::CodeAt(p)); }

// The string that a line holds: the line stripped of white space at both
// ends, by characters, without its first and its last character, which are
// taken to be the quotes. False for a comment and for a line that does not
// begin with a quote or is shorter than two characters.
bool StringOfLine(const char* line, CXString& text) {
    if (line[0] == ';')
        return false;
    const char* start = line;
    while (*start != 0 && IsSpaceAt(start))
        start = mbcs::Next(start);
    if (*start != '"')
        return false;
    const char* last = start;  // the last character that is not white space
    for (const char* p = start; *p != 0; p = mbcs::Next(p))
        if (!IsSpaceAt(p))
            last = p;
    if (last == start)
        return false;
    text = CXString(std::string(start + 1, last).c_str());
    return true;
}

}  // namespace

WldReader::WldReader(IXFile* file) : file(file) {}

bool WldReader::Next(CXString& key, CXString& value) {
    CXString rawKey;
    CXString rawValue;
    if (ended || NextString(rawKey) != Line::String) {
        ended = true;
        return false;
    }
    const Line valueLine = NextString(rawValue);
    if (valueLine != Line::String) {
        rawValue = rawKey;
        ended = valueLine == Line::End;
    }
    if (std::strcmp(rawKey, kWldLanguageKey) == 0)
        languageId = static_cast<unsigned>(std::atoi(rawValue));
    key = UndoWldEscapes(rawKey);
    value = UndoWldEscapes(rawValue);
    return true;
}

WldReader::Line WldReader::NextString(CXString& text) {
    for (;;) {
        const DWORD before = file->GetPosition();
        // Nothing before the line feed, or nothing at all: an empty line has
        // moved the position by its line feed, the end of the file has not.
        if (file->ReadLine(line, kWldLineCapacity) == 0)
            return file->GetPosition() != before ? Line::Empty : Line::End;
        if (StringOfLine(line, text))
            return Line::String;
    }
}

}  // namespace kt
