// What FTP has no command for, found out by asking the server: whether a
// file exists (a listing of its directory) and whether one may write there
// (storing a probe file).
#include "files/FileInfoRecord.h"
#include "files/UrlSession.h"
#include "kticore/files/UrlFiles.h"
#include "platform/TickCount.h"

namespace {

[[noreturn]] void ThrowNotFound(const KTWCHAR* url) {
    throw CXFileException(XErrorFromWin32(kt::sys::LastFileError()), url, XFILEOP_URL_INFO);
}

// The listing of the file's directory, narrowed by the extension; the
// server's matching is only a filter, the name is compared here without
// regard to case. A name without extension is looked for among all names:
// the client's own matching takes the pattern "*." for no name at all.
kt::sys::RemoteEntry UrlFindFile(const KTWCHAR* url) {
    kt::CUrlSession session(url);
    if (!session.IsOpen())
        ThrowNotFound(url);
    const CXStringW& path = session.Path();
    const CXStringW wanted = path.FileName();
    const CXStringW extension = path.FileExt();
    CXStringW pattern = path.FilePath() + KTW("/*");
    if (extension.GetLength() != 0)
        pattern = pattern + KTW('.') + extension;
    kt::sys::RemoteEntry found;
    bool listed;
    {
        const kt::sys::QuietCriticalErrors quiet;
        listed = session->FindEntry(
            pattern, [&wanted](const KTWCHAR* name) { return wanted.CompareI(name) == 0; }, found);
    }
    if (!listed)
        ThrowNotFound(url);
    return found;
}

// A name in the directory that nothing there has yet: the listing must not
// know it, which is the normal outcome of the first try.
CXStringW FreeProbeName(const KTWCHAR* directoryUrl) {
    for (;;) {
        CXStringW name;
        // FTP paths are delimited by slashes; a server on another system
        // would take a backslash for part of the name.
        name.Format(KTW("%s/%u.tmp"), directoryUrl, static_cast<unsigned>(kt::sys::TickCount()));
        try {
            UrlFindFile(name);
        } catch (const CXFileException&) {
            return name;
        }
    }
}

}  // namespace

void Fio_UrlGetFileInfo(const KTWCHAR* url, FioFileInfo* info) {
    if (info == nullptr)
        ThrowNotFound(url);
    *info = kt::FileInfoRecord(UrlFindFile(url).facts);
}

int Fio_UrlIsWritableDir(const KTWCHAR* url) {
    const CXStringW probe = FreeProbeName(url);
    kt::CUrlSession session(probe);
    if (!session.IsOpen() || !session->MayStore(session.Path()))
        return 0;
    session->DeleteRemoteFile(session.Path());  // what is left is the server's doing
    return 1;
}

int Fio_UrlIsWritableFile(const KTWCHAR* url) {
    if (url == nullptr)
        return 0;
    try {
        if (UrlFindFile(url).attributes & kt::sys::kAttributeReadOnly)
            return 0;
    } catch (const CXFileException&) {
        // absent: the directory decides
    }
    CXStringW directory = CXStringW(url).FilePath();
    if (directory.GetLength() == 0)
        directory = KTW(".");
    return Fio_UrlIsWritableDir(directory);
}
