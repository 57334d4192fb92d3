// The two maps from system failures to failure codes. They differ on purpose:
// structured storage's "access denied" means an element in use (XE_SHARING),
// and both of its not-found values mean a missing file.
#include "kticore/core/Exception.h"

// The tables read best as they stand, a few values a line.
// clang-format off

DWORD XErrorFromWin32(DWORD error) {
    switch (error) {
    case 8: case 14: case 84: case 1130:
        return XE_NO_MEMORY;
    case 39: case 112:
        return XE_DISK_FULL;
    case 38:
        return XE_END_OF_FILE;
    case 2:
        return XE_FILE_NOT_FOUND;
    case 3: case 15: case 20: case 55: case 67: case 123: case 161: case 206: case 1203:
    case 1214:
        return XE_PATH_NOT_FOUND;
    case 32: case 33: case 108:
        return XE_SHARING;
    case 5: case 19: case 65:
        return XE_ACCESS_DENIED;
    case 21: case 23: case 25: case 27: case 30: case 132: case 267: case 1006: case 1117:
    case 1126: case 1127: case 1128: case 1392: case 1393:
        return XE_IO_FAULT;
    case 50: case 53: case 54: case 58: case 64: case 70: case 88: case 1201: case 1204:
    case 1206: case 1222: case 6118:
        return XE_NETWORK;
    case 4:
        return XE_TOO_MANY_FILES;
    default:
        return XE_GENERIC;
    }
}

DWORD XErrorFromHResult(DWORD status) {
    switch (status) {
    case 0x80030008:
        return XE_NO_MEMORY;
    case 0x80030012: case 0x80030070:
        return XE_DISK_FULL;
    case 0x80030002: case 0x80030003:
        return XE_FILE_NOT_FOUND;
    case 0x800300FC:
        return XE_PATH_NOT_FOUND;
    case 0x80030005: case 0x80030020: case 0x80030021: case 0x80030100: case 0x80030106:
        return XE_SHARING;
    case 0x80030013:
        return XE_ACCESS_DENIED;
    case 0x00030202: case 0x800300F0: case 0x800300FA: case 0x800300FD: case 0x800300FE:
    case 0x80030104: case 0x80030105: case 0x80030108:
        return XE_GENERIC;
    case 0x80030019: case 0x8003001D: case 0x8003001E: case 0x80030103:
        return XE_IO_FAULT;
    case 0x80030201: case 0x80030202:
        return XE_NETWORK;
    case 0x80030004:
        return XE_TOO_MANY_FILES;
    default:
        return XE_BAD_DATA;
    }
}
// clang-format on
