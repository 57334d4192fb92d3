// The Win32 implementation of the profile-file seam: the platform's own
// functions, behind the guards that Wine needs.
#include "platform/ProfileFile.h"

#include <cstring>
#include <string>

namespace kt::sys {

namespace {

// A name that is there and that the platform's functions take.
bool Fits(const char* name) { return name != nullptr && std::strlen(name) <= kLongestProfileName; }

// ANSI text as 16-bit text, converted as the ANSI functions convert it.
std::wstring Wide(const char* text) {
    const int units = ::MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    std::wstring wide(units > 0 ? static_cast<size_t>(units) : 1, L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), static_cast<int>(wide.size()));
    wide.resize(wide.size() - 1);
    return wide;
}

// Nothing is read: the answer of a missing key or an empty list.
DWORD Nothing(char* buffer, DWORD size) {
    if (size > 0)
        buffer[0] = 0;
    return 0;
}

// Windows refuses to write a read-only file to everybody; Wine, run by a
// privileged user, would write it. The file is the one the functions use.
bool IsReadOnlyFile(const char* file) {
    const DWORD attributes = ::GetFileAttributesA(ProfileFilePath(file).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) &&
           !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

// A null key or text asks for a removal. Wine's WritePrivateProfileStringA
// writes a few garbled bytes for a text of more than kLongestProfileName
// bytes; its 16-bit twin, given the same conversion, writes any length.
bool Write(const char* section, const char* key, const char* text, const char* file) {
    if (!Fits(section) || (key != nullptr && !Fits(key)) || IsReadOnlyFile(file))
        return false;
    const std::wstring wideKey = key != nullptr ? Wide(key) : std::wstring();
    const std::wstring wideText = text != nullptr ? Wide(text) : std::wstring();
    return ::WritePrivateProfileStringW(Wide(section).c_str(), key != nullptr ? wideKey.c_str() : nullptr,
                                        text != nullptr ? wideText.c_str() : nullptr, Wide(file).c_str()) != 0;
}

}  // namespace

std::string ProfileFilePath(const char* file) {
    if (!IsBareFileName(file))
        return file != nullptr ? file : "";
    char directory[MAX_PATH];
    const UINT length = ::GetWindowsDirectoryA(directory, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return file;
    return std::string(directory, length) + "\\" + file;
}

DWORD ReadProfileString(const char* section, const char* key, char* buffer, DWORD size,
                        const char* file) {
    if (!Fits(section) || !Fits(key))
        return Nothing(buffer, size);
    return ::GetPrivateProfileStringA(section, key, "", buffer, size, file);
}

DWORD ReadProfileKeyNames(const char* section, char* buffer, DWORD size, const char* file) {
    if (!Fits(section))
        return Nothing(buffer, size);
    return ::GetPrivateProfileStringA(section, nullptr, "", buffer, size, file);
}

DWORD ReadProfileSectionNames(char* buffer, DWORD size, const char* file) {
    return ::GetPrivateProfileStringA(nullptr, nullptr, "", buffer, size, file);
}

bool WriteProfileString(const char* section, const char* key, const char* text,
                        const char* file) {
    return key != nullptr && text != nullptr && Write(section, key, text, file);
}

bool DeleteProfileKey(const char* section, const char* key, const char* file) {
    return key != nullptr && Write(section, key, nullptr, file);
}

bool DeleteProfileSection(const char* section, const char* file) {
    return Write(section, nullptr, nullptr, file);
}

}  // namespace kt::sys
