// CXUrlOutFile: a URL opened for writing is written locally, through an
// output file over a local copy, and uploaded whole at Commit. Until then the
// remote file is untouched; released without Commit the work goes.
#include <new>

#include "files/FileForwarder.h"
#include "files/LocalCopy.h"
#include "kticore/files/UrlFiles.h"
#include "platform/FileSystem.h"

namespace kt {
namespace {

class CXUrlOutFile final : public CTFileForwarder<IXOutFile, IXOutFile> {
public:
    CXUrlOutFile(const KTWCHAR* urlName, int flags) : url(urlName) {
        inner = Fio_OpenOut(local.Name(), flags);
        if (inner == nullptr)
            throw std::bad_alloc();
    }

    ~CXUrlOutFile() override {
        try {
            inner->Release();
        } catch (const CXException&) {
        }
    }

    const KTWCHAR* GetName() override { return url; }

    // An upload that fails throws operation 2 and keeps the finished local
    // copy, so that a later Commit can send it again; the remote file is as
    // it was. After an upload the local copy goes.
    void Commit() override {
        if (uploaded)
            return;
        inner->Commit();  // the local copy now holds the content; harmless twice
        if (!Fio_UrlPutFile(url, local.Name()))
            throw CXFileException(XErrorFromWin32(sys::LastFileError()), url, XFILEOP_WRITE);
        uploaded = true;
        local.Remove();
    }

private:
    CXStringW url;
    bool uploaded = false;
    CLocalCopy local;  // declared last: removed after the inner file is closed
};

}  // namespace
}  // namespace kt

IXOutFile* Fio_UrlOpenOut(const KTWCHAR* url, int flags) {
    if (!Fio_UrlIsWritableFile(url))
        throw CXException(XE_ACCESS_DENIED);  // a refusal before any file is made
    return new kt::CXUrlOutFile(url, flags | FIO_WRITE);
}
