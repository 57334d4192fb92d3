// What no file system of the platform accepts as a name: 512 characters or
// more in all, or a part between delimiters of more than 255. Such names are
// refused before the system is asked, with the system's code for a name too
// long, so that every build and every file system answer alike.
#pragma once

#include <string>

#include "kticore/platform/Platform.h"

namespace kt {

constexpr DWORD kNameTooLong = 206;  // ERROR_FILENAME_EXCED_RANGE

inline bool IsTooLongName(const KTWCHAR* name) {
    size_t total = 0, part = 0;
    for (; name[total] != 0; ++total) {
        const KTWCHAR unit = name[total];
        part = unit == '\\' || unit == '/' || unit == ':' ? 0 : part + 1;
        if (part > 255)
            return true;
    }
    return total >= 512;
}

}  // namespace kt
