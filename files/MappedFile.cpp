#include "files/MappedFile.h"

#include <algorithm>

#include "files/NameRules.h"
#include "kticore/files/FileLocks.h"
#include "platform/GuardedCopy.h"

namespace kt {

namespace {

// CreateFileW's attributes and flags for each way of opening.
DWORD CreationFlags(int flags) {
    const DWORD pattern = (flags & FIO_RANDOM) ? 0x10000000 : 0x08000000;
    if (!(flags & FIO_WRITE))
        return pattern | 0x21;  // archive, read-only
    if (flags & FIO_TEMPORARY)
        return pattern | 0x04000100;  // delete on close, temporary
    return pattern | 0x20;            // archive
}

void CopyName(KTWCHAR (&to)[512], const KTWCHAR* from, DWORD operation) {
    const size_t length = std::char_traits<KTWCHAR>::length(from);
    if (length >= 512)
        throw CXFileException(XErrorFromWin32(kNameTooLong), from, operation);
    std::char_traits<KTWCHAR>::copy(to, from, length + 1);
}

// A new empty file in the temporary directory, whose name `to` gets. A
// directory too long for the buffer is a name too long.
void MakeTemporaryFile(KTWCHAR (&to)[512], DWORD operation) {
    KTWCHAR directory[260] = {};
    const DWORD length = sys::TempPath(260, directory);
    if (length == 0 || length >= 260) {
        const DWORD error = length == 0 ? sys::LastFileError() : kNameTooLong;
        throw CXFileException(XErrorFromWin32(error), KTW(""), operation);
    }
    if (!sys::TempFileName(directory, KTW("KTPR"), to))
        throw CXFileException(XErrorFromWin32(sys::LastFileError()), directory, operation);
}

}  // namespace

CXFile::CXFile(const KTWCHAR* fileName, int openFlags)
    : viewSize((openFlags & (FIO_WRITE | FIO_RANDOM)) ? 2 * sys::AllocationGranularity()
                                                       : kReadWindowBytes),
      flags(static_cast<DWORD>(openFlags)),
      access((openFlags & FIO_WRITE) ? XFILEOP_WRITE : XFILEOP_READ) {
    if (fileName == nullptr) {
        MakeTemporaryFile(name, access);
    } else {
        CopyName(name, fileName, access);
    }
    if (const DWORD refused = RefusedNameError(name))
        throw CXFileException(XErrorFromWin32(refused), name, access);
    Fio_ChangeNELock(name, true);
    try {
        const bool writes = access == XFILEOP_WRITE;
        file = sys::CreateFileHandle(
            name, writes ? sys::kGenericRead | sys::kGenericWrite : sys::kGenericRead,
            writes ? 0 : sys::kShareRead | sys::kShareWrite,
            writes && !(flags & FIO_KEEP) ? sys::kCreateAlways : sys::kOpenExisting,
            CreationFlags(openFlags));
        if (file == sys::kNoFile)
            FailOpen(sys::LastFileError());
        length = sys::FileSize(file);
        if (!writes && length == 0)
            return;  // an empty file open for reading: nothing to map
        mapping = sys::CreateMapping(file, writes, viewSize);
        if (mapping == sys::kNoMapping)
            FailOpen(sys::LastFileError());
        if (writes && !(flags & FIO_KEEP))
            length = 0;
        view = static_cast<unsigned char*>(sys::MapView(mapping, writes, 0, MappedBytes()));
        if (view == nullptr)
            FailOpen(sys::LastFileError());
        CountViewBytes();
    } catch (...) {
        // Also out of memory: a failed construction closes what it made
        // and gives the lock back, since no destructor runs for it.
        if (view != nullptr)
            sys::UnmapView(view, MappedBytes());
        if (mapping != sys::kNoMapping)
            sys::CloseMapping(mapping);
        if (file != sys::kNoFile)
            sys::CloseFileHandle(file);
        Fio_ChangeNELock(name, false);
        throw;
    }
}

// The counterpart of the open's step aside: a lock on the name takes its
// handle back.
CXFile::~CXFile() { Fio_ChangeNELock(name, false); }

void CXFile::FailOpen(DWORD win32Error) {
    throw CXFileException(XErrorFromWin32(win32Error), name, access);
}

DWORD CXFile::MappedBytes() const {
    if (access == XFILEOP_WRITE)
        return viewSize;
    return std::min(viewSize, length - viewOffset);
}

void CXFile::CountViewBytes() {
    const std::uint64_t end = std::min<std::uint64_t>(length, std::uint64_t{viewOffset} + viewSize);
    viewBytes = view != nullptr && end > viewOffset ? static_cast<DWORD>(end - viewOffset) : 0;
}

void CXFile::MoveView() {
    const DWORD offset = position - position % viewSize;
    if (view != nullptr && offset == viewOffset)
        return;
    const auto failed = [this] {
        throw CXFileException(XErrorFromWin32(sys::LastFileError()), name, access);
    };
    if (view != nullptr && !sys::UnmapView(view, MappedBytes()))
        failed();
    view = nullptr;
    viewBytes = 0;
    viewOffset = offset;
    const bool writes = access == XFILEOP_WRITE;
    if (writes) {
        // A larger mapping extends the file on disk as far as the view.
        if (mapping != sys::kNoMapping && !sys::CloseMapping(mapping))
            failed();
        mapping = sys::CreateMapping(file, true, offset + viewSize);
        if (mapping == sys::kNoMapping)
            failed();
    }
    view = static_cast<unsigned char*>(sys::MapView(mapping, writes, offset, MappedBytes()));
    if (view == nullptr)
        failed();
    CountViewBytes();
}

void CXFile::Copy(void* to, const void* from, DWORD size) {
    if (!sys::CopyGuarded(to, from, size))
        FailCopy();
}

__attribute__((noinline, cold)) void CXFile::FailCopy() {
    throw CXFileException(XE_IO_FAULT, name, access);
}

DWORD CXFile::Read(void* buffer, DWORD size) {
    if (size == 0 || position >= length)
        return 0;
    const DWORD count = std::min(size, length - position);
    if (view == nullptr || position < viewOffset || position - viewOffset > viewSize)
        MoveView();
    auto* out = static_cast<unsigned char*>(buffer);
    for (DWORD left = count;;) {
        const DWORD inView = viewOffset + viewSize - position;
        const DWORD part = std::min(left, inView);
        Copy(out, view + (position - viewOffset), part);
        position += part;
        left -= part;
        if (left == 0)
            return count;
        out += part;
        MoveView();
    }
}

void CXFile::Write(const void* buffer, DWORD size) {
    if (size == 0)
        return;
    if (access == XFILEOP_READ)
        FailCopy();  // the view may not be written: refused before it faults
    if (view == nullptr || position < viewOffset || position - viewOffset >= viewSize)
        MoveView();
    const auto* in = static_cast<const unsigned char*>(buffer);
    for (DWORD left = size;;) {
        const DWORD inView = viewOffset + viewSize - position;
        const DWORD part = std::min(left, inView);
        Copy(view + (position - viewOffset), in, part);
        position += part;
        if (position > length) {
            length = position;
            CountViewBytes();
        }
        left -= part;
        if (left == 0)
            return;
        in += part;
        MoveView();
    }
}

DWORD CXFile::Seek(LONG offset, DWORD origin) {
    position = SeekTarget(offset, origin, position, length, access == XFILEOP_READ, access);
    return position;
}

int CXFile::Flush() { return view == nullptr ? 1 : sys::FlushView(view, MappedBytes()); }

// Out of line, so that the common case needs no frame.
__attribute__((noinline)) DWORD CXFile::ReadDWordAtEdge() { return ReadValue<DWORD>(); }

DWORD CXFile::ReadDWord() {
    DWORD value;
    // A fault takes the general way too, which meets it again and reports it.
    if (!InView(sizeof value) || !sys::LoadGuarded(view + (position - viewOffset), value))
        return ReadDWordAtEdge();
    position += sizeof value;
    return value;
}

int CXFile::ReadLine(char* buffer, int maxChars) {
    const DWORD available = BytesInView();
    if (maxChars <= 0 || available == 0)
        return CTypedFile::ReadLine(buffer, maxChars);
    const DWORD scan = std::min(available, static_cast<DWORD>(maxChars));
    const size_t copied =
        sys::CopyUntilGuarded(buffer, view + (position - viewOffset), scan, '\n');
    if (copied == sys::kCopyFaulted)
        FailCopy();
    const bool lineFeed = copied > 0 && buffer[copied - 1] == '\n';
    if (!lineFeed && scan < static_cast<DWORD>(maxChars))
        return CTypedFile::ReadLine(buffer, maxChars);  // the line goes on past the view
    const int count = static_cast<int>(copied) - lineFeed;
    position += static_cast<DWORD>(copied);
    buffer[lineFeed && count < maxChars - 1 ? count + 1 : count] = 0;
    return count;
}

void CXFile::Close() {
    if (view != nullptr && !sys::UnmapView(view, MappedBytes()))
        throw CXFileException(XE_NO_MEMORY, name, access);
    view = nullptr;
    viewBytes = 0;
    if (mapping != sys::kNoMapping && !sys::CloseMapping(mapping))
        throw CXFileException(XE_NO_MEMORY, name, access);
    mapping = sys::kNoMapping;
    if ((flags & FIO_WRITE) && !sys::CutFile(file, length))
        throw CXFileException(XE_NO_MEMORY, name, access);
    sys::CloseFileHandle(file);
    file = sys::kNoFile;
}

}  // namespace kt
