#include "translation/WldEscapes.h"

#include <string>

#include "strings/MultiByteText.h"

namespace kt {

namespace {

// What a backslash makes of the letter behind it, or 0 for no escape.
char Escaped(char letter) {
    switch (letter) {
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        default:
            return 0;
    }
}

}  // namespace

CXString UndoWldEscapes(const char* text) {
    std::string out;
    // A backslash is never a lead byte, so one met at a character's start is
    // a character of its own.
    for (const char* p = text; *p != 0;) {
        if (*p != '\\') {
            const unsigned size = mbcs::CharSize(p);
            out.append(p, size);
            p += size;
            continue;
        }
        while (*p == '\\')
            ++p;
        if (*p == 0)
            break;
        if (const char control = Escaped(*p)) {
            out += control;
            ++p;
        } else {
            out += '\\';
        }
    }
    return CXString(out.c_str());
}

}  // namespace kt
