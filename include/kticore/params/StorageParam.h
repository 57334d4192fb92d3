// A parameter tree kept in a compound storage. A section is a sub-storage of
// its parent's storage, a value a stream of its section's storage holding one
// variant in the stream's stored form ("@" for the default value); nothing
// else is kept in the storage. Names, their case and the order of the
// enumerations are the storage's. Nothing is committed per write: a change
// reaches the file of a transacted storage when the objects on its path have
// been released, children before parents. Failures of the storage are
// swallowed: a section that cannot be opened or made gives null, a value
// that cannot be stored is dropped, one that cannot be read gives 0 with the
// caller's variant cleared. QueryInterface answers IXStorage with the
// section's storage, and IRegisterIface. Clear ends the section: its
// storage is emptied and removed from the parent's, and the object answers
// nothing more but Release. A value path of 512 bytes or more is refused:
// GetValue gives 0 with the variant untouched, SetValue throws
// XE_BAD_ARGUMENT. Windows only, as the storages.
//
// A value and a section of one name would be one element of the storage:
// SetValue does not store over a section, GetSection does not make a section
// over a value, and DeleteValue removes only a value (CreateSection replaces
// whatever has its name). A section path with an empty step makes nothing.
// A section that another object holds open cannot be opened again, as the
// storage rules: GetSection gives null, reads through it give 0, writes
// store nothing, and DeleteSection skips it. Clear on a root empties its
// storage and leaves the storage's parent alone.
#pragma once

#include "kticore/params/Param.h"
#include "kticore/storage/Storage.h"

// The root of the tree in `storage`, which must not be null (XE_BAD_ARGUMENT
// otherwise); the tree takes its own reference on it. One reference for the
// caller.
KTCORE_API IParam* new_IXStorParam(IXStorage* storage);
