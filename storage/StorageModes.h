// From the library's open flags to the STGM access modes of OLE. Every
// element is opened in exclusive share mode; streams are never transacted.
#pragma once

#include "kticore/storage/Storage.h"

namespace kt {

inline DWORD AccessMode(DWORD flags) {
    return STGM_SHARE_EXCLUSIVE | ((flags & XSTG_READONLY) ? 0 : STGM_READWRITE);
}

inline DWORD TransactedMode(DWORD flags) { return (flags & XSTG_TRANSACTED) ? STGM_TRANSACTED : 0; }

inline DWORD CreateStorageMode(DWORD flags) {
    return AccessMode(flags) | STGM_CREATE | TransactedMode(flags);
}

inline DWORD OpenStorageMode(DWORD flags) { return AccessMode(flags) | TransactedMode(flags); }

inline DWORD CreateStreamMode(DWORD flags) { return AccessMode(flags) | STGM_CREATE; }

inline DWORD OpenStreamMode(DWORD flags) { return AccessMode(flags); }

// A root made by new_Storage: always replacing. (The platform's scratch rule
// for read-only transacted files concerns only the Windows 9x line, which a
// 64-bit module never runs on.)
inline DWORD NewRootMode(DWORD flags) {
    return OpenStorageMode(flags) | ((flags & XSTG_DELETEONRELEASE) ? STGM_DELETEONRELEASE : 0) |
           STGM_CREATE;
}

// A root opened by open_Storage: for writing always transacted, for reading
// never; a missing file fails.
inline DWORD OpenRootFlags(int readOnly) { return readOnly ? XSTG_READONLY : XSTG_TRANSACTED; }

// The flags that an OLE storage's own mode stands for.
inline DWORD FlagsOfOleMode(DWORD mode) {
    return ((mode & STGM_TRANSACTED) ? XSTG_TRANSACTED : 0) |
           ((mode & (STGM_WRITE | STGM_READWRITE)) ? 0 : XSTG_READONLY);
}

}  // namespace kt
