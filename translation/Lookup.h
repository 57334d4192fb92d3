// The lookups that every resource text passes through on its way from a
// module to its caller, and the keys that tie a text to one resource of one
// module.
#pragma once

#include <cstddef>

#include "kticore/platform/Platform.h"
// Supp_HashKey, the hash of a resource key.
#include "kticore/translation/DialogTemplates.h"

// Resource kinds of a key: "<module file>#<kind>#<id or name>".
constexpr unsigned kSuppKindDialog = 1;
constexpr unsigned kSuppKindMenu = 2;
constexpr unsigned kSuppKindString = 3;

// Room for the key prefix of a resource with a number: a module's file name
// (at most 255 characters) with its kind and number and their separators. A
// named resource needs the length of its name more.
constexpr unsigned kKeyPrefixRoom = 260 + 32;

// Capacities of the composed key (prefix and text together) of a keyed
// lookup.
constexpr unsigned kKeyedCapacityW = 1024;
constexpr unsigned kKeyedCapacityA = 2056;

// Null for a null or empty text; when nothing is found, null if `exact`,
// else `text`. The narrow lookup gives the entry's value as the file held it.
KTCORE_API const char* Supp_LookupA(const char* text, int exact);
KTCORE_API const KTWCHAR* Supp_LookupW(const KTWCHAR* text, int exact);

// Replace the text in `buffer` by its translation, cut to fit; the length of
// what the buffer holds then.
KTCORE_API int Supp_TranslateBufferA(char* buffer, unsigned capacity);
KTCORE_API int Supp_TranslateBufferW(KTWCHAR* buffer, unsigned capacity);

// prefix + text by exact lookup, then text by non-exact lookup.
KTCORE_API const KTWCHAR* Supp_LookupKeyedW(const KTWCHAR* text, const KTWCHAR* prefix);

// The same order on the text in `buffer`: the length of the translation
// found (0 for none); unless `measure`, the translation is copied in,
// without a terminator where it fills `capacity`.
KTCORE_API unsigned Supp_TranslateKeyedA(char* buffer, unsigned capacity, const char* prefix,
                                         int measure);
KTCORE_API unsigned Supp_TranslateKeyedW(KTWCHAR* buffer, unsigned capacity, const KTWCHAR* prefix,
                                         int measure);

// The key prefix of resource `id` (a number, or a pointer to a name when its
// upper bits are set) of `module`; `out` is left alone when the module's
// path cannot be read or holds no separator.
KTCORE_API void Supp_MakeKeyA(HMODULE module, const void* id, char* out, unsigned kind);
KTCORE_API void Supp_MakeKeyW(HMODULE module, const void* id, KTWCHAR* out, unsigned kind);

namespace kt {

// A wide text known by its hash, as the dictionary hashes keys, and its
// length: a keyed lookup needs no more of a prefix, so the prefix of a
// module's strings can be kept from one load to the next.
struct HashedText {
    DWORD hash = 0;
    size_t length = 0;
};

KTCORE_API HashedText HashText(const KTWCHAR* text);
// The hash of `front` followed by `back`, from theirs.
KTCORE_API HashedText Joined(HashedText front, HashedText back);

// "<module file>#": the start of every key of the module's resources; false
// when the module's path cannot be read or holds no separator.
KTCORE_API bool ModuleKeyStart(HMODULE module, HashedText& start);
// The start of a module's keys followed by "<kind>#<id>".
KTCORE_API HashedText ResourceKeyPrefix(HashedText moduleStart, unsigned kind, unsigned id);

// Supp_TranslateKeyedW with the prefix known by its hash; null for none.
KTCORE_API unsigned TranslateKeyedW(KTWCHAR* buffer, unsigned capacity, const HashedText* prefix, int measure);
// The translation the keyed order finds for `text`, or null; `hashed`
// gets the text's hash and length.
KTCORE_API const KTWCHAR* FindKeyedW(const KTWCHAR* text, const HashedText* prefix, HashedText& hashed);
// A translation of `length` units into `buffer`, as the keyed order
// delivers it; that length.
KTCORE_API unsigned DeliverW(KTWCHAR* buffer, unsigned capacity, const KTWCHAR* translation, size_t length);

}  // namespace kt

#if defined(_WIN32)
// The menu walk with a prefix, for the menu interceptors.
KTCORE_API int Supp_TranslateMenuKeyed(HMENU menu, const KTWCHAR* prefix);
#endif
