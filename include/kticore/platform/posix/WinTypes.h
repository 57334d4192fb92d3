// Native stand-ins for the Windows types of the exported interface, with the
// widths they have on 64-bit Windows (LLP64): ULONG and DWORD are 32 bits here
// too, and the 16-bit text unit is char16_t where Windows has wchar_t.
#pragma once

#include <cstdint>

typedef std::uint8_t BYTE;
typedef std::uint16_t WORD;
typedef std::uint32_t DWORD;
typedef std::uint32_t ULONG;
typedef std::int32_t LONG;
typedef std::int32_t BOOL;
typedef std::int32_t HRESULT;
typedef void* HANDLE;
typedef void* HMODULE;
// Handles of the window system and of resources: distinct types, as under
// STRICT, so that overloads on them stay apart. Nothing natively makes one.
typedef struct HWND__* HWND;
typedef struct HMENU__* HMENU;
typedef struct HFONT__* HFONT;
typedef struct HRSRC__* HRSRC;
typedef void* HGLOBAL;

typedef char16_t KTWCHAR;
#define KTW(text) u##text

// The geometric records of the Win32 headers, with their field names.
typedef struct tagSIZE {
    LONG cx;
    LONG cy;
} SIZE;
typedef struct tagPOINT {
    LONG x;
    LONG y;
} POINT;
typedef struct tagRECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
} RECT;
