// URLs wherever a file name is taken. The protocol is FTP to port 21 of the
// URL's host, with the user and password the URL holds; every call logs in
// on its own and keeps nothing. There are no remote reads or writes: a URL
// file is a local temporary copy, downloaded whole when it is opened and
// uploaded whole at Commit. Whether a remote file exists and whether one may
// write there is found out by probing the server.
#pragma once

#include "kticore/files/File.h"
#include "kticore/strings/XStringW.h"

// Takes a URL apart, nothing unescaped; an absent part is empty. 1 when
// cracked, 0 for null, a name that is not a URL or a malformed one.
KTCORE_API int Fio_UrlCrack(const KTWCHAR* url, CXStringW& host, CXStringW& user,
                            CXStringW& password, CXStringW& path);
// Fetches a remote file over an existing local one. Non-zero on success;
// throws nothing.
KTCORE_API int Fio_DownloadToFile(const KTWCHAR* url, const KTWCHAR* localFile);
// Fetches by the system's URL moniker, any scheme it knows, into its cache:
// the cache file's name in a static buffer until the next call, or null.
KTCORE_API const KTWCHAR* Fio_DownloadToCacheFile(const KTWCHAR* url);
// Uploads a local file, making one missing level of directory first.
// Non-zero on success; throws nothing.
KTCORE_API int Fio_UrlPutFile(const KTWCHAR* url, const KTWCHAR* localFile);
// Non-zero when a remote file that exists was deleted.
KTCORE_API int Fio_UrlDeleteFile(const KTWCHAR* url);
// Makes one remote directory unless it exists; throws operation 10.
KTCORE_API void Fio_UrlCreateDirectory(const KTWCHAR* url);
// Size and last write time as the server lists them; throws operation 12
// where the file is not found.
KTCORE_API void Fio_UrlGetFileInfo(const KTWCHAR* url, FioFileInfo* info);
// 1 when a new file can be made in the remote directory, else 0.
KTCORE_API int Fio_UrlIsWritableDir(const KTWCHAR* url);
// 1 when the remote file may be written, a missing one by its directory.
KTCORE_API int Fio_UrlIsWritableFile(const KTWCHAR* url);
// Fio_Open of a URL: downloads at once; throws operation 0 when it can not.
KTCORE_API IXFile* Fio_UrlOpen(const KTWCHAR* url, int flags);
// Fio_OpenOut of a URL: writes locally and uploads at Commit. A failed
// upload throws operation 2 and keeps the work for a later Commit.
KTCORE_API IXOutFile* Fio_UrlOpenOut(const KTWCHAR* url, int flags);
