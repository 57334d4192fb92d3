// A string table block holds 16 entries, each a 16-bit length and that many
// 16-bit units, no terminator. Each entry keeps its place in the block, so a
// string keeps its id; only its text and length change.
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "kticore/core/Exception.h"
#include "kticore/strings/XStringW.h"
#include "platform/Resources.h"
#include "translation/Lookup.h"
#include "translation/Rewriting.h"

namespace kt {
namespace {

// Entries longer than this are served as they stand.
constexpr size_t kTranslatedEntryLimit = 1024;
// The length word of an entry bounds what a translation may be.
constexpr size_t kLongestEntry = 0xFFFF;
// What the new block carries beyond its entries.
constexpr size_t kBlockSlack = 16;

// An entry's units as they lie: in the block, at any alignment, or in the
// dictionary.
struct Entry {
    const void* units;
    size_t length;
};

// The translation of an entry, found by `prefix` and then plain; the entry
// itself where there is none, or where it would not fit a length word.
Entry Translated(const Entry& entry, const KTWCHAR* prefix) {
    KTWCHAR text[kTranslatedEntryLimit + 1];
    std::memcpy(text, entry.units, entry.length * sizeof(KTWCHAR));
    text[entry.length] = 0;
    const KTWCHAR* found = Supp_LookupKeyedW(text, prefix);
    if (found == nullptr || found == text)
        return entry;
    const size_t length = std::char_traits<KTWCHAR>::length(found);
    if (length == 0 || length > kLongestEntry)
        return entry;
    return {found, length};
}

// The block's entries, translated; false when an entry runs past the end.
bool ReadEntries(const BYTE* bytes, size_t size, const KTWCHAR* prefix, std::vector<Entry>& entries,
                 bool& anyText) {
    for (size_t at = 0; at < size;) {
        if (size - at < sizeof(WORD))
            return false;
        WORD length;
        std::memcpy(&length, bytes + at, sizeof length);
        at += sizeof length;
        if (length > (size - at) / sizeof(KTWCHAR))
            return false;
        Entry entry{bytes + at, length};
        if (length != 0) {
            anyText = true;
            if (length <= kTranslatedEntryLimit)
                entry = Translated(entry, prefix);
        }
        entries.push_back(entry);
        at += length * sizeof(KTWCHAR);
    }
    return true;
}

void* WriteEntries(const std::vector<Entry>& entries, DWORD* outSize) {
    size_t units = 0;
    for (const Entry& entry : entries)
        units += entry.length + 1;
    if (units * sizeof(KTWCHAR) > 0xFFFFFFFFu)
        return nullptr;
    auto* block = static_cast<BYTE*>(sys::AllocLocalBlock(units * sizeof(KTWCHAR) + kBlockSlack));
    if (block == nullptr)
        return nullptr;
    std::memset(block, 0, units * sizeof(KTWCHAR) + kBlockSlack);
    BYTE* out = block;
    for (const Entry& entry : entries) {
        const WORD length = static_cast<WORD>(entry.length);
        std::memcpy(out, &length, sizeof length);
        std::memcpy(out + sizeof length, entry.units, entry.length * sizeof(KTWCHAR));
        out += sizeof length + entry.length * sizeof(KTWCHAR);
    }
    *outSize = static_cast<DWORD>(units * sizeof(KTWCHAR));
    return block;
}

}  // namespace

void* RewriteStringBlock(const void* block, size_t size, const char* prefix, DWORD* outSize) {
    try {
        const CXStringW widePrefix(prefix);
        std::vector<Entry> entries;
        bool anyText = false;
        if (!ReadEntries(static_cast<const BYTE*>(block), size, widePrefix, entries, anyText) || !anyText)
            return nullptr;
        return WriteEntries(entries, outSize);
    } catch (const CXMemException&) {
        return nullptr;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace kt
