#include "storage/UrlStorage.h"

#include "kticore/core/Exception.h"
#include "kticore/files/FileUtilities.h"
#include "kticore/files/UrlFiles.h"

namespace kt {
namespace {

void DeleteQuietly(const KTWCHAR* name) {
    try {
        Fio_DeleteFile(name);
    } catch (const CXException&) {
    }
}

}  // namespace

CUrlStorage::CUrlStorage(const KTWCHAR* url, const KTWCHAR* localName, int readOnly)
    : url(url), localName(localName) {
    // A temporary copy of our own making leaves nothing behind on failure.
    const bool madeName = this->localName.GetLength() == 0;
    if (madeName)
        this->localName = Fio_GetTempFileName();
    try {
        if (!Fio_DownloadToFile(url, this->localName))
            throw CXFileException(XE_NETWORK, nullptr, XFILEOP_OPEN);
        storage = open_Storage(this->localName, readOnly);
    } catch (const CXException&) {
        if (madeName)
            DeleteQuietly(this->localName);
        throw;
    }
}

// The copy is released before it is deleted: the platform keeps an open file.
CUrlStorage::~CUrlStorage() {
    storage->Release();
    DeleteQuietly(localName);
}

}  // namespace kt

IXStorage* open_UrlStorage(const KTWCHAR* url, const KTWCHAR* localName, int readOnly) {
    return new kt::CUrlStorage(url, localName, readOnly);
}
