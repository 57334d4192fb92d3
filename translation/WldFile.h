// Loading a `wld` dictionary file into the dictionary.
#pragma once

#include "kticore/platform/Platform.h"
#include "translation/SuppDictionary.h"

namespace kt {

// Adds the pairs of the file at `path` (any name Fio_Open takes): a key
// already defined keeps its first value. Keys are widened as they are read,
// in the code page in force before the file; at its end the file's language
// id, if the system knows it, sets the code page that values are read in.
// Failures of the file are thrown as CXFileException; pairs read before the
// failure stay.
KTCORE_API void LoadWldFile(CSuppDictionary& dictionary, const KTWCHAR* path);

}  // namespace kt
