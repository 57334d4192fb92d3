// Rewriting the import address table of a loaded 64-bit module.
#pragma once

#include <windows.h>

namespace kt {

enum class ImportPatch {
    Done,        // every entry that held the address holds the new one
    NotAnImage,  // the headers are not those of a 64-bit image with imports, or its tables lie outside it
    Refused,     // an entry could not be made writable; those before it stay rewritten
};

// Points each entry of every import descriptor's address table that holds
// `from` at `to`. The comparison is by address: an entry is rewritten
// wherever the loader bound the function, whatever library the module named.
ImportPatch RewriteImportEntries(HMODULE module, const void* from, const void* to);

}  // namespace kt
