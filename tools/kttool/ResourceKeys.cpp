#include "tools/kttool/ResourceKeys.h"

#include "kticore/core/Map.h"
#include "translation/Lookup.h"

namespace kttool {
namespace {

// Strings longer than this are served untranslated by the string block
// rewriting; menu texts are cut to this before the menu walk looks them up.
constexpr size_t kLongestString = 1024;
constexpr size_t kLongestMenuText = 511;

WideText Digits(unsigned number) {
    const std::string text = std::to_string(number);
    return WideText(text.begin(), text.end());
}

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

WideText KeyPrefix(const WideText& keyName, const ModuleText& text) {
    const WideText id = text.resource.isNumber ? Digits(text.resource.number) : text.resource.text;
    return keyName + KTWCHAR('#') + Digits(text.kind) + KTWCHAR('#') + id;
}

bool HasKeyedLookup(const WideText& prefix, const WideText& text) {
    return prefix.size() + text.size() < kKeyedCapacityW;
}

WideText SkeletonKey(const WideText& keyName, const ModuleText& text) {
    if (!IsLookedUp(text))
        return {};
    const WideText prefix = KeyPrefix(keyName, text);
    return HasKeyedLookup(prefix, text.text) ? prefix + text.text : text.text;
}

DWORD KeyHash(const WideText& key) { return CTMapKey<const KTWCHAR*>::Hash(key.c_str()); }

}  // namespace kttool
