// The stream form of a tree from arbitrary bytes, on a memory stream and on a
// stream over an OLE stream. A load ends in a tree and 1, or in an empty tree
// and 0; a tree that loaded saves to bytes that load and save again to the
// same bytes.
#include <cstdint>
#include <vector>

#include "fuzz/StableStreamForm.h"

namespace {

using kt::fuzz::Check;
using kt::fuzz::CheckStreamFormIsStable;
using kt::fuzz::StreamHolding;
using Bytes = std::vector<std::uint8_t>;

bool IsEmpty(IParam* tree) {
    const char* name = nullptr;
    bool empty = true;
    for (CTEnum<const char*>* names : {tree->EnumSections(), tree->EnumValues()}) {
        empty = empty && names->Next(1, &name, nullptr) == 0;
        names->Release();
    }
    return empty;
}

void LoadFrom(const Bytes& bytes, bool overOle) {
    IXStream* stream = StreamHolding(bytes.data(), bytes.size(), overOle);
    IParam* tree = new_MemParam();
    const int loaded = LoadParamFromXStream(stream, tree);
    stream->Release();
    Check(loaded == 1 || IsEmpty(tree));
    if (loaded == 1)
        CheckStreamFormIsStable(tree);
    tree->Release();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    const Bytes bytes(data, data + size);
    LoadFrom(bytes, false);
    LoadFrom(bytes, true);
    return 0;
}
