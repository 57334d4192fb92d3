// The Win32 implementation of the registry seam: the platform's own functions.
#include "platform/Registry.h"

namespace kt::sys {

LONG OpenRegistryKey(HKEY parent, const KTWCHAR* path, HKEY* key) {
    return ::RegOpenKeyExW(parent, path, 0, KEY_ALL_ACCESS, key);
}

LONG OpenRegistryKey(HKEY parent, const char* path, HKEY* key) {
    return ::RegOpenKeyExA(parent, path, 0, KEY_ALL_ACCESS, key);
}

LONG CreateRegistryKey(HKEY parent, const char* path, HKEY* key) {
    char noClass[] = "";
    return ::RegCreateKeyExA(parent, path, 0, noClass, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                             key, nullptr);
}

void CloseRegistryKey(HKEY key) { ::RegCloseKey(key); }

void DeleteRegistryKey(HKEY parent, const char* path) { ::RegDeleteKeyA(parent, path); }

LONG QueryRegistryValue(HKEY key, const char* name, DWORD* type, BYTE* data, DWORD* size) {
    return ::RegQueryValueExA(key, name, nullptr, type, data, size);
}

void SetRegistryValue(HKEY key, const char* name, DWORD type, const void* data, DWORD size) {
    ::RegSetValueExA(key, name, 0, type, static_cast<const BYTE*>(data), size);
}

void SetRegistryValue(HKEY key, const KTWCHAR* name, DWORD type, const void* data, DWORD size) {
    ::RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), size);
}

void DeleteRegistryValue(HKEY key, const char* name) { ::RegDeleteValueA(key, name); }

LONG RegistryKeyName(HKEY key, DWORD index, char* name, DWORD capacity) {
    return ::RegEnumKeyExA(key, index, name, &capacity, nullptr, nullptr, nullptr, nullptr);
}

LONG RegistryValueName(HKEY key, DWORD index, char* name, DWORD capacity) {
    return ::RegEnumValueA(key, index, name, &capacity, nullptr, nullptr, nullptr, nullptr);
}

}  // namespace kt::sys
