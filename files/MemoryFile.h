// The file behind a memory name, for Fio_Open and Fio_OpenOut alike.
#pragma once

#include "kticore/files/File.h"

namespace kt {

IXOutFile* NewMemoryFile(const KTWCHAR* name);

}  // namespace kt
