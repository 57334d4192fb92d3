// Whole files to and from a server, and the remote directory and delete
// operations the file utilities pass on for URLs.
#include "files/UrlSession.h"
#include "kticore/files/FileUtilities.h"
#include "kticore/files/UrlFiles.h"
#include "platform/UrlCache.h"

namespace {

// The server's root has no entry in any listing, yet it is always there.
bool NamesRoot(const KTWCHAR* url) {
    CXStringW host, user, password, path;
    return Fio_UrlCrack(url, host, user, password, path) &&
           (path.GetLength() == 0 || path.Compare(KTW("/")) == 0);
}

}  // namespace

int Fio_DownloadToFile(const KTWCHAR* url, const KTWCHAR* localFile) {
    if (localFile == nullptr)
        return 0;
    kt::CUrlSession session(url);
    return session.IsOpen() && session->GetFile(session.Path(), localFile);
}

const KTWCHAR* Fio_DownloadToCacheFile(const KTWCHAR* url) {
    static KTWCHAR name[512];
    if (!Fio_PathIsURL(url) || !kt::sys::DownloadToCacheFile(url, name, 512))
        return nullptr;
    return name;
}

int Fio_UrlPutFile(const KTWCHAR* url, const KTWCHAR* localFile) {
    if (!Fio_IsFileExist(localFile))
        return 0;
    try {
        if (Fio_IsFileExist(url) && !Fio_UrlIsWritableFile(url))
            return 0;
        Fio_UrlCreateDirectory(CXStringW(url).FilePath());
    } catch (const CXException&) {
        return 0;
    }
    kt::CUrlSession session(url);
    return session.IsOpen() && session->PutFile(localFile, session.Path());
}

int Fio_UrlDeleteFile(const KTWCHAR* url) {
    if (!Fio_IsFileExist(url))
        return 0;
    kt::CUrlSession session(url);
    return session.IsOpen() && session->DeleteRemoteFile(session.Path());
}

void Fio_UrlCreateDirectory(const KTWCHAR* url) {
    if (NamesRoot(url) || Fio_IsFileExist(url))
        return;
    kt::CUrlSession session(url);
    if (!session.IsOpen() || !session->MakeRemoteDirectory(session.Path()))
        throw CXFileException(XErrorFromWin32(kt::sys::LastFileError()), url,
                              XFILEOP_CREATE_DIRECTORY);
}
