#include "files/OutputFile.h"

#include <new>
#include <string>

#include "files/FileForwarder.h"
#include "files/LockStepAside.h"
#include "kticore/files/FileLocks.h"
#include "kticore/files/FileUtilities.h"
#include "platform/FileSystem.h"

namespace kt {
namespace {

class CXOutFile final : public CTFileForwarder<IXOutFile> {
public:
    CXOutFile(const KTWCHAR* targetName, const KTWCHAR* temporaryName, int flags)
        : target(targetName), temporary(temporaryName) {
        if (!Fio_IsWritableFile(targetName))
            throw CXFileException(XE_ACCESS_DENIED, targetName, XFILEOP_OPEN);
        const bool exists = Fio_IsFileExist(targetName) != 0;
        if (exists) {
            if (flags & FIO_KEEP) {
                // Another writer's lock, or the host's, would keep the copy out.
                const CLockStepAside stepAside(targetName);
                Fio_CopyFile(targetName, temporaryName, 0);
            }
            // Holds the target against other writers while the copy is made.
            Fio_LockFile(targetName, false);
        }
        try {
            inner = Fio_Open(temporaryName, exists ? flags : flags & ~FIO_KEEP);
            if (inner == nullptr)
                throw std::bad_alloc();  // no memory for the file object
        } catch (...) {
            if (exists)
                Fio_UnlockFile(targetName, false);
            throw;
        }
        locked = exists;
        inner->Seek(0, flags & FIO_KEEP);  // with FIO_KEEP writing appends
    }

    ~CXOutFile() override {
        // A lock of construction that a failed Commit left goes with the
        // object; the complete work of such a Commit stays on disk.
        if (locked)
            Fio_UnlockFile(target.c_str(), false);
        if (inner == nullptr)
            return;
        // Released without Commit: the work goes, the target stays. Where
        // the temporary file can not be deleted, not even for lack of
        // memory, it stays behind.
        try {
            inner->Release();
            inner = nullptr;
            Fio_DeleteFile(temporary.c_str());
        } catch (...) {
        }
    }

    const KTWCHAR* GetName() override { return target.c_str(); }

    // The temporary file takes the target's place in one step, so that a
    // failure at any moment leaves either the old or the new file there. A
    // failed Commit keeps the complete temporary file.
    void Commit() override {
        if (inner == nullptr)
            return;
        inner->Release();  // closes the file and cuts it to its length
        inner = nullptr;
        const CLockStepAside stepAside(target.c_str());
        if (locked) {
            Fio_UnlockFile(target.c_str(), false);
            locked = false;
        }
        if (!Fio_IsFileExist(target.c_str())) {
            Fio_RenameFile(temporary.c_str(), target.c_str());
        } else if (!sys::ReplaceFileWith(temporary.c_str(), target.c_str())) {
            throw CXFileException(XErrorFromWin32(sys::LastFileError()), target.c_str(),
                                  XFILEOP_DELETE);
        }
    }

private:
    std::basic_string<KTWCHAR> target;
    std::basic_string<KTWCHAR> temporary;
    bool locked = false;
};

}  // namespace

IXOutFile* NewOutputFile(const KTWCHAR* target, const KTWCHAR* temporary, int flags) {
    return new CXOutFile(target, temporary, flags);
}

}  // namespace kt
