// Names of the machine-wide objects that carry the shared lock and the start
// signals: one component after "/", within the namespace that the environment
// variable KTCORE_SYNC_NAMESPACE gives, so that separate installations (or
// test runs of separate build trees) on one machine do not share them.
#pragma once

#include <string>

namespace kt::sys {

// "/" and `text` within `space` (empty: no namespace). A text that would be
// too long for a semaphore's name, or holds a "/", is folded into a hash of
// fixed size, so that every text gives a usable name.
std::string SyncNameIn(const std::string& space, const std::string& text);

// The same within this process's namespace, read from the environment once.
std::string SyncName(const std::string& text);

}  // namespace kt::sys
