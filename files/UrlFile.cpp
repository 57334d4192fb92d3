// CXUrlFile: a URL opened for reading is a local copy, downloaded whole when
// it is opened. It never sees later changes of the remote file, and what is
// written to it stays local and dies with it.
#include <new>

#include "files/FileForwarder.h"
#include "files/LocalCopy.h"
#include "kticore/files/UrlFiles.h"
#include "platform/FileSystem.h"

namespace kt {
namespace {

class CXUrlFile final : public CTFileForwarder<IXFile> {
public:
    CXUrlFile(const KTWCHAR* urlName, int flags) : url(urlName) {
        if (!Fio_DownloadToFile(urlName, local.Name()))
            throw CXFileException(XErrorFromWin32(sys::LastFileError()), urlName, XFILEOP_OPEN);
        inner = Fio_Open(local.Name(), flags);
        if (inner == nullptr)
            throw std::bad_alloc();
    }

    ~CXUrlFile() override {
        // The copy goes even where closing it reports a failure.
        try {
            inner->Release();
        } catch (const CXException&) {
        }
    }

    const KTWCHAR* GetName() override { return url; }

private:
    CXStringW url;
    CLocalCopy local;  // declared last: removed after the inner file is closed
};

}  // namespace
}  // namespace kt

IXFile* Fio_UrlOpen(const KTWCHAR* url, int flags) { return new kt::CXUrlFile(url, flags); }
