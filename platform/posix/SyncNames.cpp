// Machine-wide object names within a namespace.
#include "platform/posix/SyncNames.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace kt::sys {

namespace {

constexpr char kNamespaceVariable[] = "KTCORE_SYNC_NAMESPACE";
// A semaphore lives in a file named "sem." and its name's component.
constexpr size_t kLongestComponent = NAME_MAX - 4;

// FNV-1a, 64 bits: wide enough that two live names never meet.
std::uint64_t Hash(const std::string& text) {
    std::uint64_t hash = 0xcbf29ce484222325ull;
    for (const char c : text) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 0x100000001b3ull;
    }
    return hash;
}

}  // namespace

std::string SyncNameIn(const std::string& space, const std::string& text) {
    const std::string component = space.empty() ? text : space + "." + text;
    if (component.size() <= kLongestComponent && component.find('/') == std::string::npos)
        return "/" + component;
    char folded[32];
    std::snprintf(folded, sizeof folded, "/kt-%016llx",
                  static_cast<unsigned long long>(Hash(component)));
    return folded;
}

std::string SyncName(const std::string& text) {
    static const std::string space = [] {
        const char* value = std::getenv(kNamespaceVariable);
        return std::string(value != nullptr ? value : "");
    }();
    return SyncNameIn(space, text);
}

}  // namespace kt::sys
