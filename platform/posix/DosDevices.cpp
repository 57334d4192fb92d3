#include "platform/posix/DosDevices.h"

#include <cctype>

namespace kt::sys::posix {

DosDevice DosDeviceNamed(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    const std::string part = slash == std::string::npos ? path : path.substr(slash + 1);
    // Windows reads the device name up to an extension or a colon and
    // ignores the blanks behind it ("nul .txt" is NUL).
    std::string stem = part.substr(0, part.find_first_of(".:"));
    stem.erase(stem.find_last_not_of(' ') + 1);
    for (char& c : stem)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (stem == "NUL")
        return DosDevice::Null;
    if (stem == "CON")
        return DosDevice::Console;
    if (stem == "PRN" || stem == "AUX")
        return DosDevice::Absent;
    const std::string port = stem.substr(0, 3);
    const bool numbered = stem.size() == 4 && (port == "COM" || port == "LPT");
    return numbered && stem[3] >= '1' && stem[3] <= '9' ? DosDevice::Absent : DosDevice::None;
}

DWORD DosDeviceError(DosDevice device) {
    switch (device) {
    case DosDevice::Null: return 87;    // ERROR_INVALID_PARAMETER
    case DosDevice::Console: return 6;  // ERROR_INVALID_HANDLE
    default: return 2;                  // ERROR_FILE_NOT_FOUND
    }
}

}  // namespace kt::sys::posix
