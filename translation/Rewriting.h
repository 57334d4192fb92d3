// Rewriting of a module's templates: a dialog template or a string table
// block goes in, a new block with translated texts, the dictionary's font
// and the dialog's layout comes out. Pure byte work, no window system.
//
// Where a template or block is cut short, counts more items than its bytes
// hold, has a string without terminator or creation data past its end, the
// original is handed back: nothing is read outside it.
#pragma once

#include <cstddef>

#include "kticore/translation/DialogTemplates.h"

namespace kt {

// Supp_RewriteDialog and Supp_LayoutDialog on a template of `size` bytes, of
// which none outside is read.
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
