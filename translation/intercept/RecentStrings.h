// What the keyed order gave lately for a string of a module. A patched
// module loads the same strings again and again (a status line, a menu
// prompt); a load that finds the same text in the buffer, from the same
// module, with the dictionary unchanged, takes its outcome from here,
// without hashing the text or asking the dictionary.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

#include "kticore/platform/Platform.h"

namespace kt {

// The translation of a string, or null for none, and its length.
struct StringOutcome {
    const KTWCHAR* translation = nullptr;
    size_t translationLength = 0;
};

// Where a module's string stands: the module, known by its identity (see
// ModuleKeyStarts.h), the string's id, and the state of the dictionary and
// of the modules, read before the lookup whose outcome is remembered.
struct StringSource {
    HMODULE module;
    std::uint64_t identity;
    UINT id;
    unsigned generation;
};

// The generation of a source: what was found holds while it stays.
KTCORE_API unsigned RecentStringsGeneration();

// The outcome remembered for `source` if `text`, as loaded (`loaded` as the
// system counted it), is the text it was remembered for.
KTCORE_API bool RecallString(const StringSource& source, const KTWCHAR* text, int loaded, StringOutcome& outcome);

// Remembers the outcome for `text`, of `length` units; a text too long for
// the memory, or with a 0 inside, is not kept.
KTCORE_API void RememberString(const StringSource& source, const KTWCHAR* text, size_t length, int loaded,
                    StringOutcome outcome);

// Everything remembered is forgotten: a module went. Exported, with the
// rest, for the tests.
KTCORE_API void ForgetRecentStrings();

}  // namespace kt
