#include "objects/Proxy.h"

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

void CXProxy::Load(IXStream* stream) {
    delete[] data;
    data = nullptr;
    const unsigned position = stream->Seek(0, 1);
    const unsigned end = stream->Seek(0, 2);
    stream->Seek(static_cast<LONG>(position), 0);
    if (position > end || size > end - position)
        throw CXException(XE_SHORT_DATA);
    data = new unsigned char[size];
    stream->Read(data, size);
}

void CXProxy::Save(IXStream* stream) { stream->Write(data, size); }

}  // namespace kt
