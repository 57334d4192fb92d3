// The process's lock table: one entry per locked name, holding the handle
// that keeps other processes from writing the file and the counts of the two
// kinds of lock. Names are compared without regard to case and without any
// normalisation: two spellings of one path are two entries.
#include "kticore/files/FileLocks.h"

#include <list>
#include <string>

#include "kticore/core/Exception.h"
#include "kticore/files/File.h"
#include "kticore/files/FileUtilities.h"
#include "platform/FileSystem.h"
#include "strings/TextTraits.h"

namespace kt {
namespace {

struct LockEntry {
    sys::FileHandle handle = sys::kNoFile;
    DWORD exclusive = 0;
    DWORD nonExclusive = 0;
    std::basic_string<KTWCHAR> name;
    // Made with the entry: stepping aside and back asks for no memory, so
    // that it can not fail where memory has run out.
    sys::SystemName systemName;

    DWORD& Count(bool ofExclusive) { return ofExclusive ? exclusive : nonExclusive; }

    // Read and write access, sharing reads only: while it is open no other
    // open for writing succeeds, here or in another process. A missing file
    // leaves the entry without a handle.
    void OpenHandle() {
        handle = sys::CreateFileHandle(systemName, sys::kGenericRead | sys::kGenericWrite,
                                       sys::kShareRead, sys::kOpenExisting, 0x20000021);
    }
    void CloseHandle() {
        if (handle != sys::kNoFile)
            sys::CloseFileHandle(handle);
        handle = sys::kNoFile;
    }
};

std::list<LockEntry>& LockTable() {
    static std::list<LockEntry> table;
    return table;
}

int lockingEnabled = 1;

// A null name has no entry and gets none.
std::list<LockEntry>::iterator Find(const KTWCHAR* name) {
    auto& table = LockTable();
    if (name == nullptr)
        return table.end();
    for (auto entry = table.begin(); entry != table.end(); ++entry)
        if (WideText::CompareIgnoringCase(entry->name.c_str(), name, ~0u) == 0)
            return entry;
    return table.end();
}

}  // namespace
}  // namespace kt

using kt::Find;
using kt::LockTable;

void Fio_LockFile(const KTWCHAR* name, bool exclusive) {
    if (name == nullptr || (!kt::lockingEnabled && Fio_IsMemFile(name)))
        return;
    const auto found = Find(name);
    if (found != LockTable().end()) {
        ++found->Count(exclusive);
        return;
    }
    kt::LockEntry entry;
    entry.Count(exclusive) = 1;
    entry.name = name;
    entry.systemName = kt::sys::SystemNameOf(name);
    // A non-exclusive lock may wait for its file to be made.
    if (exclusive || Fio_IsFileExist(name)) {
        entry.OpenHandle();
        if (entry.handle == kt::sys::kNoFile)
            return;
    }
    try {
        LockTable().push_back(std::move(entry));
    } catch (...) {  // no memory for the table: the handle goes with the entry
        entry.CloseHandle();
        throw;
    }
}

void Fio_UnlockFile(const KTWCHAR* name, bool exclusive) {
    const auto found = Find(name);
    // An unlock of a kind the name does not hold finds nothing to unlock, as
    // for a name without entry: a wrapped count would hold the name for good.
    if (found == LockTable().end() || found->Count(exclusive) == 0)
        return;
    --found->Count(exclusive);
    if (found->exclusive == 0 && found->nonExclusive == 0) {
        found->CloseHandle();
        LockTable().erase(found);
    }
}

int Fio_LockCount(const KTWCHAR* name, bool exclusive) {
    const auto found = Find(name);
    return found != LockTable().end() ? static_cast<int>(found->Count(exclusive)) : 0;
}

void Fio_ChangeNELock(const KTWCHAR* name, bool release) {
    const auto found = Find(name);
    if (found == LockTable().end())
        return;
    if (release) {
        // No call failed: the code only says that the file is held.
        if (found->exclusive != 0)
            throw CXFileException(XErrorFromWin32(kt::sys::LastFileError()), found->name.c_str(),
                                  XFILEOP_LOCK);
        found->CloseHandle();
    } else {
        found->CloseHandle();  // calls do not nest: one handle at most
        found->OpenHandle();
    }
}

int Fio_EnableLocking(int enable) {
    const int previous = kt::lockingEnabled;
    kt::lockingEnabled = enable;
    return previous;
}
