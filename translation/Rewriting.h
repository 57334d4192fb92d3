// Rewriting of a module's templates: a dialog template or a string table
// block goes in, a new block with translated texts, the dictionary's font
// and the dialog's layout comes out. Pure byte work, no window system.
//
// Where a template or block is cut short, counts more items than its bytes
// hold, has a string without terminator or creation data past its end, the
// original is handed back: nothing is read outside it.
#pragma once

#include <cstddef>

#include "kticore/platform/Platform.h"

// The template rewritten with its captions, buttons and statics translated
// (keyed by `prefix`, a narrow resource key prefix, or null for plain keys
// only) and the dictionary's font: a block from malloc, with `*outSize` its
// size. `tmpl` itself with `*outSize` 0 when the dictionary is empty or the
// template is malformed; null, `*outSize` untouched, when memory ran out.
//
// Without a size the template is taken at its word, as the dialog manager
// that gets it next takes it: reading ends where its own structure ends.
KTCORE_API void* Supp_RewriteDialog(const void* tmpl, unsigned* outSize, const char* prefix);
// The same, with the layout of the dialog whose key hashes to `keyHash`
// applied first, when the dictionary holds one.
KTCORE_API void* Supp_LayoutDialog(const void* tmpl, unsigned keyHash, unsigned* outSize, const char* prefix);

namespace kt {

// The same on a template of `size` bytes, of which none outside is read.
KTCORE_API void* RewriteDialogTemplate(const void* tmpl, size_t size, unsigned* outSize, const char* prefix);
KTCORE_API void* LayoutDialogTemplate(const void* tmpl, size_t size, unsigned keyHash, unsigned* outSize,
                                      const char* prefix);

// A string table block of `size` bytes with each entry translated in its
// place (keyed by `prefix`, the block's resource key prefix): a local block
// (sys::AllocLocalBlock) with `*outSize` its size. Null where the block is
// served as it stands: all its entries are empty, it is malformed, or memory
// ran out.
KTCORE_API void* RewriteStringBlock(const void* block, size_t size, const char* prefix, DWORD* outSize);

}  // namespace kt
