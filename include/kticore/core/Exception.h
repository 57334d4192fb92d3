// Failures. What a caller must not miss is thrown by value as a CXException
// (or a derived class) and caught by reference; the failure is a small number,
// and the library holds no message text for it.
#pragma once

#include "kticore/platform/Platform.h"

enum XErrorCode : DWORD {
    XE_NONE = 0,             // no failure
    XE_CANCELLED = 1,        // a progress sink asked to stop
    XE_NO_MEMORY = 2,        // out of memory
    XE_DISK_FULL = 3,        // the medium is full
    XE_END_OF_FILE = 4,      // read past the end
    XE_BAD_SEEK = 5,         // bad origin, or past the end of a file open for reading
    XE_FILE_NOT_FOUND = 6,   // no such file
    XE_PATH_NOT_FOUND = 7,   // no such path, or a bad name
    XE_SHARING = 8,          // sharing or lock violation, object in use
    XE_ACCESS_DENIED = 9,    // no access, write-protected
    XE_BAD_ARGUMENT = 10,    // bad argument or bad use of an operation
    XE_GENERIC = 11,         // a system failure without a code of its own
    XE_IO_FAULT = 12,        // device, medium or file fault
    XE_NETWORK = 13,         // network failure
    XE_TOO_MANY_FILES = 14,  // too many open files
    XE_BAD_DATA = 15,        // unknown storage status; unknown type code in stored data
    XE_SHORT_DATA = 16,      // a stored object is longer than what is left in its stream
    XE_NOT_TEXT = 34,        // parameter text that is not narrow text
};

// What a CXFileException was doing when it failed.
enum XFileOperation : DWORD {
    XFILEOP_OPEN = 0,        // opening a URL for reading, or an output file
    XFILEOP_READ_WRITE = 1,  // a stream's data; a file open for reading
    XFILEOP_READ = 1,
    XFILEOP_WRITE = 2,  // a file open for writing
    XFILEOP_SEEK = 3,   // a stream's seek
    XFILEOP_DESTROY_ELEMENT = 4,  // removing an element of a storage
    XFILEOP_LOCK = 5,   // a lock giving up its handles
    XFILEOP_DELETE = 7,
    XFILEOP_COPY = 8,
    XFILEOP_RENAME = 9,
    XFILEOP_CREATE_DIRECTORY = 10,
    XFILEOP_DELETE_DIRECTORY = 11,
    XFILEOP_URL_INFO = 12,
    XFILEOP_FILE_INFO = 13,
    XFILEOP_SET_DIRECTORY = 14,
};

class KTCORE_API CXException {
public:
    explicit CXException(DWORD code = XE_NONE);
    CXException(const CXException&) = default;
    CXException& operator=(const CXException&) = default;

    virtual ~CXException();
    virtual int GetCode();
    virtual void Report();

    DWORD code;
    HMODULE module;  // this library's module at the moment of the throw
};

class KTCORE_API CXMemException : public CXException {
public:
    CXMemException();
};

class KTCORE_API CXEofException : public CXException {
public:
    CXEofException();
};

// `name` never points to heap memory, so that the exception can be thrown when
// memory has run out: it lies in one of four static slots of 512 units. The
// fifth live exception overwrites the name of the first slot. A copy shares
// the slot and destroying either frees it, so catch these by reference.
class KTCORE_API CXFileException : public CXException {
public:
    CXFileException(DWORD code, const KTWCHAR* name, DWORD operation);
    CXFileException(const CXFileException&) = default;
    CXFileException& operator=(const CXFileException&) = default;
    ~CXFileException() override;

    const KTWCHAR* name;
    DWORD operation;
};

// An interface that an operation needed is missing, or a call on it cannot be
// served; `iface` names it. The code is always XE_BAD_ARGUMENT.
class KTCORE_API CXIFaceException : public CXException {
public:
    explicit CXIFaceException(const type_info* iface);

    const type_info* iface;
};

// The failure code of a Win32 error (GetLastError) and of the status of a
// structured-storage call. Unlisted values give XE_GENERIC and XE_BAD_DATA.
KTCORE_API DWORD XErrorFromWin32(DWORD error);
KTCORE_API DWORD XErrorFromHResult(DWORD status);

// Throws the CXFileException that a failed system call on `name` means, with
// the code that XErrorFromWin32 gives for `win32Error`.
[[noreturn]] KTCORE_API void XThrowFileError(DWORD win32Error, const KTWCHAR* name,
                                             DWORD operation);
