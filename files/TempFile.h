// A new empty file in the temporary directory, named from "KTPR", for the
// library's own use: its name in the caller's hands, where
// Fio_GetTempFileName's buffer is shared by every thread of the process.
#pragma once

#include <string>

#include "kticore/platform/Platform.h"

namespace kt {

// The file's name; empty when no file could be made.
KTCORE_API std::basic_string<KTWCHAR> NewTempFile();

}  // namespace kt
