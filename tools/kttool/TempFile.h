// A new empty file in the temporary directory, deleted with its object.
#pragma once

#include "kticore/core/Exception.h"
#include "kticore/files/FileUtilities.h"
#include "kticore/strings/XStringW.h"

namespace kttool {

class TempFile {
public:
    TempFile() : name(Fio_GetTempFileName()) {}
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;
    ~TempFile() {
        try {
            Fio_DeleteFile(name);
        } catch (const CXException&) {
            // A temporary file left behind harms nobody.
        }
    }
    const KTWCHAR* Name() const { return name; }

private:
    CXStringW name;
};

}  // namespace kttool
