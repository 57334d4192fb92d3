// The stream form of a tree from arbitrary bytes, on a memory stream and on a
// stream over an OLE stream. A load ends in a tree and 1, or in an empty tree
// and 0; a tree that loaded saves to bytes that load and save again to the
// same bytes.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "kticore/core/Exception.h"
#include "kticore/params/ParamTools.h"
#include "platform/OleStream.h"
#include "streams/OleStream.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

void Check(bool condition) {
    if (!condition)
        std::abort();
}

IXStream* StreamHolding(const Bytes& bytes, bool overOle) {
    IXStream* stream;
    if (overOle) {
        IStream* ole = kt::sys::NewMemoryOleStream();
        stream = kt_NewStreamOnOleStream("fuzzed", ole);
        ole->Release();
    } else {
        stream = new_StreamOnMemory();
    }
    if (!bytes.empty())
        stream->Write(bytes.data(), static_cast<unsigned>(bytes.size()));
    stream->Seek(0, 0);
    return stream;
}

bool IsEmpty(IParam* tree) {
    const char* name = nullptr;
    bool empty = true;
    for (CTEnum<const char*>* names : {tree->EnumSections(), tree->EnumValues()}) {
        empty = empty && names->Next(1, &name, nullptr) == 0;
        names->Release();
    }
    return empty;
}

// The saved form, or nothing when the tree holds names the form cannot carry.
Bytes Saved(IParam* tree) {
    IXStream* stream = new_StreamOnMemory();
    Bytes bytes;
    try {
        Check(SaveParamToXStream(stream, tree) == 1);
        bytes.resize(stream->GetLength());
        stream->Seek(0, 0);
        if (!bytes.empty())
            stream->Read(bytes.data(), static_cast<unsigned>(bytes.size()));
    } catch (const CXException& failure) {
        Check(failure.code == XE_BAD_ARGUMENT);
        bytes.clear();
    }
    stream->Release();
    return bytes;
}

void LoadFrom(const Bytes& bytes, bool overOle) {
    IXStream* stream = StreamHolding(bytes, overOle);
    IParam* tree = new_MemParam();
    const int loaded = LoadParamFromXStream(stream, tree);
    stream->Release();
    Check(loaded == 1 || IsEmpty(tree));
    if (loaded == 1) {
        const Bytes first = Saved(tree);
        if (!first.empty()) {
            IXStream* again = StreamHolding(first, false);
            IParam* copy = new_MemParam();
            Check(LoadParamFromXStream(again, copy) == 1);
            Check(Saved(copy) == first);
            copy->Release();
            again->Release();
        }
    }
    tree->Release();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    const Bytes bytes(data, data + size);
    LoadFrom(bytes, false);
    LoadFrom(bytes, true);
    return 0;
}
