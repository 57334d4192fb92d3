// Streams for tests: the implementations that share the stored forms, made
// fresh, and their content as bytes.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kticore/core/Exception.h"
#include "kticore/streams/Stream.h"
#include "platform/OleStream.h"
#include "streams/OleStream.h"
#include "tests/support/Counted.h"
#include "tests/support/WideText.h"

namespace kt::test {

using Bytes = std::vector<unsigned char>;

// A stream over an OLE stream in memory, as the storages hand them out.
inline IXStream* NewOleBackedStream(const char* name = "ole test stream") {
    IStream* ole = sys::NewMemoryOleStream();
    IXStream* stream = kt_NewStreamOnOleStream(name, ole);
    ole->Release();
    return stream;
}

// The seekable streams, by name, for tests that hold for each of them.
struct StreamKind {
    const char* name;
    IXStream* (*make)();
};
inline const StreamKind kSeekableStreams[] = {
    {"Memory", [] { return new_StreamOnMemory(); }},
    {"Ole", [] { return NewOleBackedStream(); }},
};

struct StreamKindName {
    std::string operator()(const ::testing::TestParamInfo<StreamKind>& info) const {
        return info.param.name;
    }
};

// The whole content; the position is left at the end.
inline Bytes AllBytes(IXStream* stream) {
    Bytes bytes(stream->GetLength());
    stream->Seek(0, 0);
    if (!bytes.empty()) {
        EXPECT_EQ(stream->Read(bytes.data(), static_cast<unsigned>(bytes.size())), bytes.size());
    }
    return bytes;
}

// A stream of the given kind holding `bytes`, positioned at its start.
inline Ref<IXStream> StreamOf(const StreamKind& kind, const Bytes& bytes) {
    Ref<IXStream> stream(kind.make());
    if (!bytes.empty())
        stream->Write(bytes.data(), static_cast<unsigned>(bytes.size()));
    stream->Seek(0, 0);
    return stream;
}

// A seek from origin 3 is a bad argument of a seek, named by the stream, and
// leaves the position where it was.
inline void ExpectBadOriginRefused(IXStream* stream) {
    const unsigned before = stream->GetPosition();
    try {
        stream->Seek(0, 3);
        ADD_FAILURE() << "origin 3 was taken";
    } catch (const CXFileException& failure) {
        EXPECT_EQ(failure.code, XE_BAD_ARGUMENT);
        EXPECT_EQ(failure.operation, XFILEOP_SEEK);
        EXPECT_EQ(Wide(failure.name), Wide(CXStringW(stream->GetName())));
    }
    EXPECT_EQ(stream->GetPosition(), before);
}

}  // namespace kt::test
