// What FTP has no command for, found out by asking the server: whether a
// file exists (a listing of its directory) and whether one may write there
// (storing a probe file). Each probe asks all of its questions in one session.
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
bool FindRemoteFile(kt::CUrlSession& session, const CXStringW& path, kt::sys::RemoteEntry& found) {
    const CXStringW wanted = path.FileName();
    const CXStringW extension = path.FileExt();
    CXStringW pattern = path.FilePath() + KTW("/*");
    if (extension.GetLength() != 0)
        pattern = pattern + KTW('.') + extension;
    const kt::sys::QuietCriticalErrors quiet;
    return session->FindEntry(
        pattern, [&wanted](const KTWCHAR* name) { return wanted.CompareI(name) == 0; }, found);
}

kt::sys::RemoteEntry UrlFindFile(const KTWCHAR* url) {
    kt::CUrlSession session(url);
    kt::sys::RemoteEntry found;
    if (!session.IsOpen() || !FindRemoteFile(session, session.Path(), found))
        ThrowNotFound(url);
    return found;
}

// A path in the directory that nothing there has yet: the listing must not
// know it, which is the normal outcome of the first try.
CXStringW FreeProbePath(kt::CUrlSession& session, const CXStringW& directory) {
    for (;;) {
        CXStringW path;
        // FTP paths are delimited by slashes; a server on another system
        // would take a backslash for part of the name.
        path.Format(KTW("%s/%u.tmp"), static_cast<const KTWCHAR*>(directory),
                    static_cast<unsigned>(kt::sys::TickCount()));
        kt::sys::RemoteEntry found;
        if (!FindRemoteFile(session, path, found))
            return path;
    }
}

// Whether the session's server lets a new file be stored in the directory
// that `directoryUrl` names.
bool MayStoreIn(kt::CUrlSession& session, const KTWCHAR* directoryUrl) {
    CXStringW host, user, password, directory;
    if (!Fio_UrlCrack(directoryUrl, host, user, password, directory))
        return false;
    const CXStringW probe = FreeProbePath(session, directory);
    if (!session->MayStore(probe))
        return false;
    session->DeleteRemoteFile(probe);  // what is left is the server's doing
    return true;
}

}  // namespace

void Fio_UrlGetFileInfo(const KTWCHAR* url, FioFileInfo* info) {
    if (info == nullptr)
        ThrowNotFound(url);
    *info = kt::FileInfoRecord(UrlFindFile(url).facts);
}

int Fio_UrlIsWritableDir(const KTWCHAR* url) {
    kt::CUrlSession session(url);
    return session.IsOpen() && MayStoreIn(session, url);
}

int Fio_UrlIsWritableFile(const KTWCHAR* url) {
    kt::CUrlSession session(url);
    if (!session.IsOpen())
        return 0;
    kt::sys::RemoteEntry found;
    // An absent file: the directory decides.
    if (FindRemoteFile(session, session.Path(), found) &&
        (found.attributes & kt::sys::kAttributeReadOnly))
        return 0;
    return MayStoreIn(session, CXStringW(url).FilePath());
}
