#include "platform/posix/DosDevices.h"

#include <cctype>

namespace kt::sys::posix {

DosDevice DosDeviceNamed(std::string_view path) {
    const size_t slash = path.find_last_of('/');
    const std::string_view part = slash == std::string_view::npos ? path : path.substr(slash + 1);
    // Windows reads the device name up to an extension or a colon and
    // ignores the blanks behind it ("nul .txt" is NUL).
    std::string_view name = part.substr(0, part.find_first_of(".:"));
    name = name.substr(0, name.find_last_not_of(' ') + 1);
    char upper[4];
    if (name.size() > sizeof upper)
        return DosDevice::None;  // no device name is longer
    for (size_t i = 0; i < name.size(); ++i)
        upper[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(name[i])));
    const std::string_view stem(upper, name.size());
    if (stem == "NUL")
        return DosDevice::Null;
    if (stem == "CON")
        return DosDevice::Console;
    if (stem == "PRN" || stem == "AUX")
        return DosDevice::Absent;
    const std::string_view port = stem.substr(0, 3);
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
