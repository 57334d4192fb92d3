#include "tools/kttool/ResourceKeys.h"

#include "kticore/core/Map.h"
#include "translation/Lookup.h"

namespace kttool {
namespace {

// Strings longer than this are served untranslated by the string block
// rewriting; menu texts are cut to this before the menu walk looks them up.
constexpr size_t kLongestString = 1024;
constexpr size_t kLongestMenuText = 511;

WideText Ascii(const std::string& text) { return WideText(text.begin(), text.end()); }

bool IsLookedUp(const ModuleText& text) {
    switch (text.kind) {
        case kSuppKindString:
            return text.text.size() <= kLongestString;
        case kSuppKindMenu:
            return text.text.size() <= kLongestMenuText;
        default:
            return true;
    }
}

}  // namespace

WideText KeyPrefix(const std::string& fileName, const ModuleText& text) {
    const WideText id =
        text.resource.isNumber ? Ascii(std::to_string(text.resource.number)) : text.resource.text;
    return Ascii(fileName) + KTWCHAR('#') + Ascii(std::to_string(text.kind)) + KTWCHAR('#') + id;
}

bool HasKeyedLookup(const WideText& prefix, const WideText& text) {
    return prefix.size() + text.size() < kKeyedCapacityW;
}

WideText SkeletonKey(const std::string& fileName, const ModuleText& text) {
    if (!IsLookedUp(text))
        return {};
    const WideText prefix = KeyPrefix(fileName, text);
    return HasKeyedLookup(prefix, text.text) ? prefix + text.text : text.text;
}

DWORD KeyHash(const WideText& key) { return CTMapKey<const KTWCHAR*>::Hash(key.c_str()); }

}  // namespace kttool
