// Names that no file can have, refused before the system is asked so that
// every build and every file system answer alike: 512 characters or more in
// all, or a part between delimiters of more than 255 (the system's code for a
// name too long). Reserved device names are not refused here: they go to the
// system, which opens NUL as an empty file.
#pragma once

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

// The system error that a name is refused with, or 0 for a name to try.
inline DWORD RefusedNameError(const KTWCHAR* name) {
    return IsTooLongName(name) ? kNameTooLong : 0;
}

}  // namespace kt
