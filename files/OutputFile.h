// CXOutFile: writes into a temporary file beside its target and puts it in
// the target's place at Commit; released without Commit it removes the
// temporary file and leaves the target as it was.
#pragma once

#include "kticore/files/File.h"

namespace kt {

// `temporary` is an empty file on the target's volume, made by the caller.
// Throws std::bad_alloc when there is no memory for the object or its inner
// file.
IXOutFile* NewOutputFile(const KTWCHAR* target, const KTWCHAR* temporary, int flags);

}  // namespace kt
