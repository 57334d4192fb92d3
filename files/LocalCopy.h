// The local temporary file behind a URL file: made in the temporary
// directory, removed with the object that holds it.
#pragma once

#include <string>

#include "kticore/files/FileUtilities.h"
#include "files/TempFile.h"

namespace kt {

class CLocalCopy {
public:
    CLocalCopy() : name(NewTempFile()) {}
    ~CLocalCopy() { Remove(); }
    CLocalCopy(const CLocalCopy&) = delete;
    CLocalCopy& operator=(const CLocalCopy&) = delete;

    const KTWCHAR* Name() const { return name.c_str(); }

    // A file that can not be removed stays behind; nothing is thrown.
    void Remove() noexcept {
        if (name.empty())
            return;
        try {
            Fio_DeleteFile(name.c_str());
        } catch (const CXException&) {
        }
        name.clear();
    }

private:
    std::basic_string<KTWCHAR> name;
};

}  // namespace kt
