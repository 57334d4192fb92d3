// The Win32 implementation of code page conversion.
#include "platform/TextConversion.h"

namespace kt::sys {

int MultiByteToWide(unsigned codePage, const char* text, int size, KTWCHAR* out, int capacity) {
    if (size <= 0)
        return 0;
    return MultiByteToWideChar(codePage, 0, text, size, out, out != nullptr ? capacity : 0);
}

int WideToMultiByte(unsigned codePage, const KTWCHAR* text, int size, char* out, int capacity) {
    if (size <= 0)
        return 0;
    return WideCharToMultiByte(codePage, 0, text, size, out, out != nullptr ? capacity : 0, nullptr,
                               nullptr);
}

}  // namespace kt::sys
