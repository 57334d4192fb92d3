// While one lives, this process's non-exclusive lock on a name has given up
// its handle; it takes it back however the scope is left, also when memory
// has run out.
#pragma once

#include "kticore/files/FileLocks.h"
#include "kticore/strings/XStringW.h"

namespace kt {

class CLockStepAside : public CXStringW {
public:
    // Throws XFILEOP_LOCK when an exclusive lock is held on the name.
    explicit CLockStepAside(const KTWCHAR* name) : CXStringW(name) { Fio_ChangeNELock(name, true); }
    // Taking the handle back never throws, nor asks for memory.
    ~CLockStepAside() override { Fio_ChangeNELock(*this, false); }
    CLockStepAside(const CLockStepAside&) = delete;
    CLockStepAside& operator=(const CLockStepAside&) = delete;
};

}  // namespace kt
