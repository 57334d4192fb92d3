#include "platform/OleStream.h"

namespace kt::sys {

IStream* NewMemoryOleStream() {
    IStream* stream = nullptr;
    if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, &stream)))
        return nullptr;
    return stream;
}

}  // namespace kt::sys
