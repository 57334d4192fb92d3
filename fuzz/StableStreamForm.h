// The promise both tree fuzzers hold a tree to: its stream form, loaded and
// saved again, gives the same bytes.
#pragma once

#include <cstdint>
#include <vector>

#include "fuzz/FuzzStreams.h"
#include "kticore/core/Exception.h"
#include "kticore/params/ParamTools.h"

namespace kt::fuzz {

// The saved form, or nothing when the tree holds names the form cannot carry.
inline std::vector<std::uint8_t> SavedForm(IParam* tree) {
    IXStream* stream = new_StreamOnMemory();
    std::vector<std::uint8_t> bytes;
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

inline void CheckStreamFormIsStable(IParam* tree) {
    const std::vector<std::uint8_t> first = SavedForm(tree);
    if (first.empty())
        return;
    IXStream* stream = StreamHolding(first.data(), first.size(), false);
    IParam* loaded = new_MemParam();
    Check(LoadParamFromXStream(stream, loaded) == 1);
    Check(SavedForm(loaded) == first);
    loaded->Release();
    stream->Release();
}

}  // namespace kt::fuzz
