// The reserved device names of Windows natively. On Windows a name whose last
// part is CON, PRN, AUX, NUL, COM1 to COM9 or LPT1 to LPT9 (in any case, with
// any extension, in any directory) names a device, not a file. The POSIX half
// answers for such names what Windows answers on a machine that has no
// console, printer or serial port: NUL is the null device, open to everybody
// and always empty; the others are devices that are not there.
#pragma once

#include <string_view>

#include "kticore/platform/Platform.h"

namespace kt::sys::posix {

enum class DosDevice {
    None,     // a file name
    Null,     // NUL
    Console,  // CON, which a process without a console can not open
    Absent,   // a printer or serial port that the machine does not have
};

// The device that the last part of `path` names. Allocates nothing.
DosDevice DosDeviceNamed(std::string_view path);

// The Win32 error with which Windows refuses to open the device, or to
// treat it as a file: delete, rename or copy from it. NUL opens, and refuses
// the rest with ERROR_INVALID_PARAMETER.
DWORD DosDeviceError(DosDevice device);

// The path the null device opens natively.
constexpr const char* kNullDevicePath = "/dev/null";

}  // namespace kt::sys::posix
