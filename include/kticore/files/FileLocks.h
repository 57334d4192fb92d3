// The process's file locks. A lock is an open handle that keeps other
// processes from writing the file, with counts of its holders. The process
// itself may still open a file on which it holds a non-exclusive lock: the
// lock steps aside for the open and takes its handle back afterwards.
#pragma once

#include "kticore/platform/Platform.h"

// Adds a lock of the kind. Never reports: a file that can not be held (it is
// read-only, missing for an exclusive lock, or held by others) gets no lock,
// which Fio_LockCount tells.
KTCORE_API void Fio_LockFile(const KTWCHAR* name, bool exclusive);
KTCORE_API void Fio_UnlockFile(const KTWCHAR* name, bool exclusive);
KTCORE_API int Fio_LockCount(const KTWCHAR* name, bool exclusive);
// True: a lock on the name gives up its handle (throws XFILEOP_LOCK when an
// exclusive lock is held); false: it takes one again.
KTCORE_API void Fio_ChangeNELock(const KTWCHAR* name, bool release);
// Whether memory names are ignored by Fio_LockFile; returns the earlier value.
KTCORE_API int Fio_EnableLocking(int enable);
