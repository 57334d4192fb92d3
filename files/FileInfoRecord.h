// The record that Fio_GetFileInfo fills, from what a listing tells of a file,
// local or remote.
#pragma once

#include "kticore/files/File.h"
#include "platform/FileSystem.h"

namespace kt {

inline FioFileInfo FileInfoRecord(const sys::FoundFile& found) {
    return {found.size, found.second,    found.minute, found.hour,
            found.day,  found.dayOfWeek, found.month,  found.year};
}

}  // namespace kt
