#include "translation/WldEscapes.h"

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

void UndoWldEscapes(const char* text, size_t size, std::string& out) {
    out.clear();
    const char* const end = text + size;
    const char* run = text;  // the bytes since the last escape, copied as they stand
    // A backslash is never a lead byte, so one met at a character's start is
    // a character of its own. A lead byte as the last byte is one character.
    for (const char* p = text; p < end;) {
        if (*p != '\\') {
            p += mbcs::IsLead(*p) && p + 1 < end ? 2 : 1;
            continue;
        }
        out.append(run, p);
        while (p < end && *p == '\\')
            ++p;
        if (p == end) {
            run = end;
            break;
        }
        if (const char control = Escaped(*p)) {
            out += control;
            ++p;
        } else {
            out += '\\';
        }
        run = p;
    }
    out.append(run, end);
}

}  // namespace kt
