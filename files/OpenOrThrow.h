// Opening for the library's own readers and writers, which go on only with a
// file: where Fio_Open and Fio_OpenOut answer null (memory ran out), these
// throw the file failure that their callers already handle.
#pragma once

#include "kticore/core/Exception.h"
#include "kticore/files/File.h"

namespace kt {

template <class File>
File* OpenedOrThrow(File* file, const KTWCHAR* name) {
    if (file == nullptr)
        throw CXFileException(XE_NO_MEMORY, name, XFILEOP_OPEN);
    return file;
}

inline IXFile* OpenOrThrow(const KTWCHAR* name, int flags) {
    return OpenedOrThrow(Fio_Open(name, flags), name);
}

inline IXOutFile* OpenOutOrThrow(const KTWCHAR* name, int flags) {
    return OpenedOrThrow(Fio_OpenOut(name, flags), name);
}

}  // namespace kt
