// What the fuzzers of stored forms share: the check that ends a run, and a
// stream, on memory or over an OLE stream, that holds the fuzzer's bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "kticore/streams/Stream.h"
#include "platform/OleStream.h"
#include "streams/OleStream.h"

namespace kt::fuzz {

inline void Check(bool condition) {
    if (!condition)
        std::abort();
}

// A stream at position 0 holding `size` bytes.
inline IXStream* StreamHolding(const std::uint8_t* data, size_t size, bool overOle) {
    IXStream* stream;
    if (overOle) {
        IStream* ole = kt::sys::NewMemoryOleStream();
        stream = kt_NewStreamOnOleStream("fuzzed", ole);
        ole->Release();
    } else {
        stream = new_StreamOnMemory();
    }
    if (size != 0)
        stream->Write(data, static_cast<unsigned>(size));
    stream->Seek(0, 0);
    return stream;
}

}  // namespace kt::fuzz
