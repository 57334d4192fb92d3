// Dialog templates in memory, rewritten for the dictionary: translated
// captions of the dialog, its buttons and statics, the dictionary's font and
// the dialog's layout. The library does this for the dialogs of the modules
// whose resources it translates; a host that builds a template itself may
// ask for the same.
#pragma once

#include "kticore/platform/Platform.h"

// The template rewritten, keyed by `prefix` (a resource key prefix such as
// "app.dll#1#100", or null for plain keys only): a block from malloc, which
// the caller frees, with `*outSize` its size. `tmpl` itself with `*outSize` 0
// when the dictionary is empty or the template is malformed; null, with
// `*outSize` untouched, when memory ran out.
//
// Without a size the template is taken at its word, as the dialog manager
// that gets it next takes it: reading ends where its own structure ends.
KTCORE_API void* Supp_RewriteDialog(const void* tmpl, unsigned* outSize, const char* prefix);
// The same, with the layout of the dialog whose key hashes to `keyHash`
// applied first, when the dictionary holds one.
KTCORE_API void* Supp_LayoutDialog(const void* tmpl, unsigned keyHash, unsigned* outSize, const char* prefix);

// The case-blind hash of a resource key that identifies a dialog's layout.
KTCORE_API DWORD Supp_HashKey(const char* key);
