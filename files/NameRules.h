// Names that no file can have, refused before the system is asked so that
// every build and every file system answer alike: 512 characters or more in
// all, or a part between delimiters of more than 255 (the system's code for a
// name too long); and the reserved device names of Windows (CON, PRN, AUX,
// NUL, COM1 to COM9, LPT1 to LPT9, with any extension, in any case), which
// name devices that can not be mapped (the code for an invalid name).
#pragma once

#include <string>

#include "kticore/platform/Platform.h"

namespace kt {

constexpr DWORD kNameTooLong = 206;  // ERROR_FILENAME_EXCED_RANGE
constexpr DWORD kInvalidName = 123;  // ERROR_INVALID_NAME

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


inline bool IsDeviceName(const KTWCHAR* name) {
    const KTWCHAR* part = name;
    for (const KTWCHAR* p = name; *p != 0; ++p)
        if (*p == '\\' || *p == '/' || *p == ':')
            part = p + 1;
    char stem[5] = {};
    size_t length = 0;
    for (; part[length] != 0 && part[length] != '.'; ++length) {
        if (length == 4)
            return false;
        const KTWCHAR unit = part[length];
        stem[length] = static_cast<char>(unit >= 'a' && unit <= 'z' ? unit - 'a' + 'A' : unit);
    }
    static const char* const kDevices[] = {"CON", "PRN", "AUX", "NUL"};
    for (const char* device : kDevices)
        if (std::string(stem) == device)
            return true;
    return length == 4 && (std::string(stem, 3) == "COM" || std::string(stem, 3) == "LPT") &&
           stem[3] >= '1' && stem[3] <= '9';
}

// The system error that a name is refused with, or 0 for a name to try.
inline DWORD RefusedNameError(const KTWCHAR* name) {
    if (IsTooLongName(name))
        return kNameTooLong;
    return IsDeviceName(name) ? kInvalidName : 0;
}

}  // namespace kt
