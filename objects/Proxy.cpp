#include "objects/Proxy.h"

#include <memory>

#include "kticore/core/Exception.h"

namespace kt {

int CXProxy::InternalQueryInterface(const type_info& wanted, void** out) {
    if (wanted != typeid(IPersistX))
        return CKTUnknownImpl<IPersistXStream>::InternalQueryInterface(wanted, out);
    if (out != nullptr) {
        *out = static_cast<IPersistX*>(this);
        AddRef();
    }
    return 1;
}

// The held payload is replaced only when the new one has been read whole,
// so a failed Load leaves a proxy that still writes what it held.
void CXProxy::Load(IXStream* stream) {
    const unsigned position = stream->Seek(0, 1);
    const unsigned end = stream->Seek(0, 2);
    stream->Seek(static_cast<LONG>(position), 0);
    if (position > end || size > end - position)
        throw CXException(XE_SHORT_DATA);
    std::unique_ptr<unsigned char[]> loaded(new unsigned char[size]);
    stream->Read(loaded.get(), size);
    delete[] data;
    data = loaded.release();
}

void CXProxy::Save(IXStream* stream) { stream->Write(data, size); }

}  // namespace kt
