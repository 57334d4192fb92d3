// The system registry, as the registry parameter tree uses it: keys opened or
// made with all access rights, values read, written and listed by index.
// Windows only: natively the registry tree is not built. Results are the
// platform's status, ERROR_SUCCESS (0) when the call did its work.
#pragma once

#include "kticore/platform/Platform.h"

namespace kt::sys {

// A key below `parent`, for a path of any depth.
LONG OpenRegistryKey(HKEY parent, const KTWCHAR* path, HKEY* key);
LONG OpenRegistryKey(HKEY parent, const char* path, HKEY* key);
// The same, making the levels that are missing.
LONG CreateRegistryKey(HKEY parent, const char* path, HKEY* key);
void CloseRegistryKey(HKEY key);
// Removes a key that has no sub-keys.
void DeleteRegistryKey(HKEY parent, const char* path);

// Type and data of a value: `size` gives the room of `data` and comes back
// as the size of the value; ERROR_MORE_DATA when the room is short.
LONG QueryRegistryValue(HKEY key, const char* name, DWORD* type, BYTE* data, DWORD* size);
// A null or empty name is the key's unnamed value.
void SetRegistryValue(HKEY key, const char* name, DWORD type, const void* data, DWORD size);
void SetRegistryValue(HKEY key, const KTWCHAR* name, DWORD type, const void* data, DWORD size);
void DeleteRegistryValue(HKEY key, const char* name);

// The name of the sub-key or the value at `index`, into `capacity` bytes;
// ERROR_MORE_DATA when it does not fit, ERROR_NO_MORE_ITEMS behind the last.
LONG RegistryKeyName(HKEY key, DWORD index, char* name, DWORD capacity);
LONG RegistryValueName(HKEY key, DWORD index, char* name, DWORD capacity);

}  // namespace kt::sys
