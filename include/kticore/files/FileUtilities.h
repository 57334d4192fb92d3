// Functions on file names. Failures throw CXFileException with the code of
// the system's error and the operation's number; memory names and URLs are
// treated as each function says.
#pragma once

#include "kticore/files/File.h"
#include "kticore/strings/XStringW.h"

KTCORE_API void Fio_CopyFile(const KTWCHAR* from, const KTWCHAR* to, int failIfExists);
KTCORE_API void Fio_DeleteFile(const KTWCHAR* name);
KTCORE_API void Fio_RenameFile(const KTWCHAR* from, const KTWCHAR* to);
// Makes every missing level; an existing directory or file is no failure.
KTCORE_API void Fio_CreateDirectory(const KTWCHAR* name);
KTCORE_API void Fio_DeleteDirectory(const KTWCHAR* name);
KTCORE_API void Fio_GetCurrentDirectory(KTWCHAR* buffer, int size);
KTCORE_API void Fio_SetCurrentDirectory(const KTWCHAR* name);
KTCORE_API void Fio_GetFileInfo(const KTWCHAR* name, FioFileInfo* info);
// Never throws.
KTCORE_API int Fio_IsFileExist(const KTWCHAR* name);
// 1 when the file may be written now: missing files count as writable.
KTCORE_API int Fio_IsWritableFile(const KTWCHAR* name);
KTCORE_API int Fio_IsWritableFile(const KTWCHAR* name, CXStringW& text);
// Whether the user may read and write the object by its access rights.
KTCORE_API int Fio_IsWritableDir(const KTWCHAR* name);
// The owner of a file as "account domain"; 0 when it can not be told.
KTCORE_API int Fio_GetSecurityInfo(const KTWCHAR* name, CXStringW& owner);
// A new empty file in the temporary directory; the name lies in a static
// buffer until the next call. The caller deletes the file.
KTCORE_API const KTWCHAR* Fio_GetTempFileName();
// Non-zero for a URL.
KTCORE_API int Fio_PathIsURL(const KTWCHAR* name);
