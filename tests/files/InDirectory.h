// Makes a directory the current one while it lives; the earlier one comes
// back however the test leaves the scope.
#pragma once

#include "kticore/files/FileUtilities.h"
#include "tests/support/WideText.h"

namespace kt::test {

class InDirectory {
public:
    explicit InDirectory(const WideString& directory) {
        Fio_GetCurrentDirectory(previous, 512);
        Fio_SetCurrentDirectory(directory.c_str());
    }
    ~InDirectory() { Fio_SetCurrentDirectory(previous); }
    InDirectory(const InDirectory&) = delete;
    InDirectory& operator=(const InDirectory&) = delete;

private:
    KTWCHAR previous[512];
};

}  // namespace kt::test
