// Where names that are URLs leave the file layer. FTP through the platform's
// internet functions comes with the URL layer; until then every operation
// answers as it does when the server can not be reached.
#pragma once

#include "kticore/files/File.h"

namespace kt {

IXFile* OpenUrlFile(const KTWCHAR* url, int flags);
IXOutFile* OpenUrlOutFile(const KTWCHAR* url, int flags);
void DeleteUrlFile(const KTWCHAR* url);
void CreateUrlDirectory(const KTWCHAR* url);
void GetUrlFileInfo(const KTWCHAR* url, FioFileInfo* info);
int IsWritableUrl(const KTWCHAR* url);

}  // namespace kt
