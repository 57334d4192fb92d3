// The keys under which the dictionary looks a module's text up: the keyed
// form "<module file>#<kind>#<id or name>" + text first, the plain text then.
#pragma once

#include "tools/kttool/ModuleTexts.h"

namespace kttool {

// The prefix of a text's resource in the module whose file is `keyName`
// (ModuleKeyName), as Supp_MakeKeyW writes it.
WideText KeyPrefix(const WideText& keyName, const ModuleText& text);

// The key a skeleton gives `text`: the keyed form, or the plain text where
// prefix and text together would not fit the composed key, so that the
// keyed lookup is skipped. Empty where the running application never looks
// the text up at all.
WideText SkeletonKey(const WideText& keyName, const ModuleText& text);

// Whether the keyed lookup of `text` is made: prefix and text fit the
// composed key.
bool HasKeyedLookup(const WideText& prefix, const WideText& text);

// The dictionary's identity of a key: the hash of its wide form.
DWORD KeyHash(const WideText& key);

}  // namespace kttool
