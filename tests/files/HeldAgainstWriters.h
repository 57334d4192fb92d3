// Whether some open holds a file against a writer right now: what a lock's
// handle does while the lock has it.
#pragma once

#include "platform/FileSystem.h"
#include "tests/support/WideText.h"

namespace kt::test {

inline bool HeldAgainstWriters(const WideString& name) {
    const sys::FileHandle writer =
        sys::CreateFileHandle(name.c_str(), sys::kGenericWrite, sys::kShareRead | sys::kShareWrite,
                              sys::kOpenExisting, 0);
    if (writer == sys::kNoFile)
        return sys::LastFileError() == sys::kErrorSharingViolation;  // not a file gone missing
    sys::CloseFileHandle(writer);
    return false;
}

}  // namespace kt::test
