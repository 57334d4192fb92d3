// LoadString in a patched module: the real string, then its translation in
// the caller's buffer, keyed by the string table block it lives in.
#include <cstdint>

#include "kticore/translation/Interception.h"
#include "kticore/translation/Translation.h"
#include "strings/WideSteps.h"
#include "translation/Lookup.h"
#include "translation/intercept/Interceptors.h"
#include "translation/intercept/ModuleKeyStarts.h"
#include "translation/intercept/RecentStrings.h"

namespace kt::intercept {
namespace {

constexpr unsigned kStringsPerBlock = 16;

// Ids beyond 16 bits name no string table block, and get no key.
bool HasBlock(UINT id) { return id >> 16 == 0; }

// The number under which FindResource sees the block, so that a string has
// one key however it is reached.
unsigned BlockOf(UINT id) { return id / kStringsPerBlock + 1; }

// With capacity 0 the system hands out a pointer into the resource instead
// of a copy: that is passed through as it is.
bool IsCopied(const void* buffer, int capacity) { return buffer != nullptr && capacity > 0; }

// The real string in the caller's buffer, then `translate(hasBlock, loaded)`
// on it: a string of a block is keyed by the block's prefix.
template <class Unit, class Real, class Translate>
int LoadTranslatedString(Real real, Translate translate, HINSTANCE module, UINT id, Unit* buffer, int capacity) {
    const int loaded = real(module, id, buffer, capacity);
    if (!Supp_IsTranslationEnable() || !IsCopied(buffer, capacity))
        return loaded;
    // The system leaves the buffer alone when the string is missing.
    if (loaded == 0) {
        buffer[0] = 0;
        return 0;
    }
    return OrUntranslated([&] { return static_cast<int>(translate(HasBlock(id), loaded)); }, [&] { return loaded; });
}

}  // namespace

int WINAPI LoadStringA(HINSTANCE module, UINT id, LPSTR buffer, int capacity) {
    return LoadTranslatedString(KT_REAL(LoadStringA), [&](bool hasBlock, int) {
        char prefix[kKeyPrefixRoom] = {};
        if (hasBlock)
            Supp_MakeKeyA(module, reinterpret_cast<const void*>(std::uintptr_t{BlockOf(id)}), prefix, kSuppKindString);
        return Supp_TranslateKeyedA(buffer, static_cast<unsigned>(capacity), prefix[0] != 0 ? prefix : nullptr, 0);
    }, module, id, buffer, capacity);
}

namespace {

// A wide string of a block: its outcome remembered by module and id, else
// the keyed order with the block's prefix, joined from the module's
// remembered key start by its hash, with no file name read and no key
// composed.
unsigned TranslateStringOfBlock(HMODULE module, UINT id, KTWCHAR* buffer, unsigned capacity, int loaded) {
    StringSource source = {module, 0, id, RecentStringsGeneration()};
    const bool rememberable = RememberableIdentity(module, source.identity);
    StringOutcome outcome;
    if (!rememberable || !RecallString(source, buffer, loaded, outcome)) {
        HashedText start;
        if (!RememberedModuleKeyStart(module, start))
            return TranslateKeyedW(buffer, capacity, nullptr, 0);
        const HashedText prefix = ResourceKeyPrefix(start, kSuppKindString, BlockOf(id));
        HashedText text;
        outcome.translation = FindKeyedW(buffer, &prefix, text);
        outcome.translationLength = outcome.translation != nullptr ? WideLength(outcome.translation) : 0;
        if (rememberable)
            RememberString(source, buffer, text.length, loaded, outcome);
        if (outcome.translation == nullptr)
            return static_cast<unsigned>(text.length);
    }
    if (outcome.translation == nullptr)
        return static_cast<unsigned>(loaded);
    return DeliverW(buffer, capacity, outcome.translation, outcome.translationLength);
}

}  // namespace

// The wide form is on the path of every text a patched module shows.
int WINAPI LoadStringW(HINSTANCE module, UINT id, LPWSTR buffer, int capacity) {
    return LoadTranslatedString(KT_REAL(LoadStringW), [&](bool hasBlock, int loaded) {
        if (!hasBlock)
            return TranslateKeyedW(buffer, static_cast<unsigned>(capacity), nullptr, 0);
        const HMODULE resolved = module != nullptr ? module : GetModuleHandleW(nullptr);
        return TranslateStringOfBlock(resolved, id, buffer, static_cast<unsigned>(capacity), loaded);
    }, module, id, buffer, capacity);
}

}  // namespace kt::intercept

int LoadStringNotTransW(HINSTANCE module, unsigned id, wchar_t* buffer, int capacity) {
    return KT_REAL(LoadStringW)(module, id, buffer, capacity);
}

int _LoadStringNotTrans(HINSTANCE module, unsigned id, char* buffer, int capacity) {
    return KT_REAL(LoadStringA)(module, id, buffer, capacity);
}
