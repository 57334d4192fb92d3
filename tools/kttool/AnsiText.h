// Command-line arguments arrive in the process's ANSI code page; the system
// calls that take paths want them wide.
#pragma once

#include <windows.h>

#include <string>

namespace kttool {

inline std::wstring Wide(const std::string& narrow) {
    const int length = MultiByteToWideChar(CP_ACP, 0, narrow.data(), static_cast<int>(narrow.size()), nullptr, 0);
    std::wstring wide(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, narrow.data(), static_cast<int>(narrow.size()), wide.data(), length);
    return wide;
}

}  // namespace kttool
