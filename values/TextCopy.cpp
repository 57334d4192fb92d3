#include "values/TextCopy.h"

#include <cstring>
#include <string>

namespace kt {

char* CopyText(const char* text, size_t length) {
    char* copy = new char[length + 1];
    std::memcpy(copy, text, length);
    copy[length] = 0;
    return copy;
}

KTWCHAR* CopyText(const KTWCHAR* text, size_t length) {
    KTWCHAR* copy = new KTWCHAR[length + 1];
    std::char_traits<KTWCHAR>::copy(copy, text, length);
    copy[length] = 0;
    return copy;
}

char* CopyText(const char* text) {
    return text != nullptr ? CopyText(text, std::strlen(text)) : nullptr;
}

KTWCHAR* CopyText(const KTWCHAR* text) {
    return text != nullptr ? CopyText(text, std::char_traits<KTWCHAR>::length(text)) : nullptr;
}

}  // namespace kt
