// Entries and layouts put into the process's one dictionary, as a
// translator's files give them. Tests use keys of their own, so that the
// order in which they run does not matter.
#pragma once

#include <initializer_list>
#include <utility>

#include "translation/Lookup.h"
#include "translation/SuppDictionary.h"

namespace kt::test {

inline void AddTranslations(std::initializer_list<std::pair<const char*, const char*>> pairs) {
    for (const auto& [key, value] : pairs)
        SuppDictionary().Add(key, value);
}

struct PlacedEdges {
    int position;
    CIRect edges;
};

// The layout of the dialog of resource key `key`; the hash that finds it.
inline unsigned AddLayout(const char* key, SIZE size, std::initializer_list<PlacedEdges> controls) {
    auto* layout = new KTDlgPos;
    layout->size = size;
    for (const PlacedEdges& control : controls)
        layout->items.Set(control.position, control.edges);
    const unsigned hash = Supp_HashKey(key);
    SuppDictionary().dialogs.Set(static_cast<int>(hash), layout);
    return hash;
}

}  // namespace kt::test
