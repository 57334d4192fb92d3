// LoadString in a patched module: the real string, then its translation in
// the caller's buffer, keyed by the string table block it lives in.
#include <cstdint>

#include "kticore/translation/Interception.h"
#include "kticore/translation/Translation.h"
#include "translation/Lookup.h"
#include "translation/intercept/Interceptors.h"

namespace kt::intercept {
namespace {

constexpr unsigned kStringsPerBlock = 16;

// Ids beyond 16 bits name no string table block, and get no key.
bool HasBlock(UINT id) { return id >> 16 == 0; }

// The number under which FindResource sees the block, so that a string has
// one key however it is reached.
const void* BlockOf(UINT id) { return reinterpret_cast<const void*>(std::uintptr_t{id / kStringsPerBlock + 1}); }

// With capacity 0 the system hands out a pointer into the resource instead
// of a copy: that is passed through as it is.
bool IsCopied(const void* buffer, int capacity) { return buffer != nullptr && capacity > 0; }

template <class Unit, class Real, class MakeKey, class Translate>
int LoadTranslatedString(Real real, MakeKey makeKey, Translate translate, HINSTANCE module, UINT id, Unit* buffer,
                         int capacity) {
    const int loaded = real(module, id, buffer, capacity);
    if (!Supp_IsTranslationEnable() || !IsCopied(buffer, capacity))
        return loaded;
    // The system leaves the buffer alone when the string is missing.
    if (loaded == 0) {
        buffer[0] = 0;
        return 0;
    }
    Unit prefix[kKeyPrefixRoom] = {};
    if (HasBlock(id))
        makeKey(module, BlockOf(id), prefix, kSuppKindString);
    return static_cast<int>(translate(buffer, static_cast<unsigned>(capacity), prefix[0] != 0 ? prefix : nullptr, 0));
}

}  // namespace

int WINAPI LoadStringA(HINSTANCE module, UINT id, LPSTR buffer, int capacity) {
    return LoadTranslatedString(KT_REAL(LoadStringA), Supp_MakeKeyA, Supp_TranslateKeyedA, module, id, buffer,
                                capacity);
}

int WINAPI LoadStringW(HINSTANCE module, UINT id, LPWSTR buffer, int capacity) {
    return LoadTranslatedString(KT_REAL(LoadStringW), Supp_MakeKeyW, Supp_TranslateKeyedW, module, id, buffer,
                                capacity);
}

}  // namespace kt::intercept

int LoadStringNotTransW(HINSTANCE module, unsigned id, wchar_t* buffer, int capacity) {
    return KT_REAL(LoadStringW)(module, id, buffer, capacity);
}

int _LoadStringNotTrans(HINSTANCE module, unsigned id, char* buffer, int capacity) {
    return KT_REAL(LoadStringA)(module, id, buffer, capacity);
}
