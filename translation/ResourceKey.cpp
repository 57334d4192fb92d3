// Resource keys: the module's file name, the kind of resource and its id or
// name, in front of a text, tie a translation to one resource of one module.
#include <cstdint>
#include <string>

#include "kticore/core/Map.h"
#include "platform/Module.h"
#include "translation/Lookup.h"

namespace {

// A resource id is a pointer to a name unless it fits in 16 bits
// (IS_INTRESOURCE).
bool IsNumericId(const void* id) { return reinterpret_cast<std::uintptr_t>(id) >> 16 == 0; }

template <class Unit>
bool IsPathSeparator(Unit unit) {
    return unit == Unit(':') || unit == Unit('\\') || unit == Unit('/');
}

// The decimal digits of `number` at `out`; the end of them.
template <class Unit>
Unit* PutNumber(Unit* out, unsigned number) {
    Unit digits[10];
    int count = 0;
    do {
        digits[count++] = static_cast<Unit>('0' + number % 10);
        number /= 10;
    } while (number != 0);
    while (count > 0)
        *out++ = digits[--count];
    return out;
}

// "<file>#" at `out`, where <file> is the module's path behind its last ':',
// '\' or '/'; the end of it, or null when the path holds no separator.
template <class Unit>
Unit* PutKeyStart(const Unit* path, size_t length, Unit* out) {
    const Unit* file = path + length;
    while (file != path && !IsPathSeparator(file[-1]))
        --file;
    if (file == path)
        return nullptr;
    const size_t fileLength = static_cast<size_t>(path + length - file);
    std::char_traits<Unit>::copy(out, file, fileLength);
    out += fileLength;
    *out++ = Unit('#');
    return out;
}

// "<kind>#" at `out`; the end of it.
template <class Unit>
Unit* PutKind(Unit* out, unsigned kind) {
    out = PutNumber(out, kind);
    *out++ = Unit('#');
    return out;
}

// "<file>#<kind>#<id>" or "<file>#<kind>#<name>" into `out`. Written in
// place: every string a patched module loads makes one.
template <class Unit>
void MakeKey(const Unit* path, size_t length, const void* id, Unit* out, unsigned kind) {
    out = PutKeyStart(path, length, out);
    if (out == nullptr)
        return;
    out = PutKind(out, kind);
    if (IsNumericId(id)) {
        *PutNumber(out, static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(id))) = 0;
        return;
    }
    const auto* name = static_cast<const Unit*>(id);
    std::char_traits<Unit>::copy(out, name, std::char_traits<Unit>::length(name) + 1);
}

}  // namespace

void Supp_MakeKeyA(HMODULE module, const void* id, char* out, unsigned kind) {
    char path[kt::sys::kModulePathCapacity];
    MakeKey(path, kt::sys::ModuleFileNameA(module, path), id, out, kind);
}

void Supp_MakeKeyW(HMODULE module, const void* id, KTWCHAR* out, unsigned kind) {
    KTWCHAR path[kt::sys::kModulePathCapacity];
    MakeKey(path, kt::sys::ModuleFileNameW(module, path), id, out, kind);
}

bool kt::ModuleKeyStart(HMODULE module, HashedText& start) {
    KTWCHAR path[sys::kModulePathCapacity];
    KTWCHAR text[sys::kModulePathCapacity + 1];
    KTWCHAR* end = PutKeyStart(path, sys::ModuleFileNameW(module, path), text);
    if (end == nullptr)
        return false;
    *end = 0;
    start = HashText(text);
    return true;
}

// Every string load of a patched module makes one: the few units are folded
// into the start's hash one by one, as the keys' hash takes them.
kt::HashedText kt::ResourceKeyPrefix(HashedText moduleStart, unsigned kind, unsigned id) {
    constexpr DWORD kHashFactor = 257;
    KTWCHAR text[32];
    const KTWCHAR* end = PutNumber(PutKind(text, kind), id);
    HashedText prefix = moduleStart;
    for (const KTWCHAR* unit = text; unit != end; ++unit, ++prefix.length)
        prefix.hash = prefix.hash * kHashFactor + static_cast<WORD>(*unit);
    return prefix;
}

DWORD Supp_HashKey(const char* key) {
    // The case-blind hash of the maps of narrow names: h * 257 + c over the
    // bytes taken as signed, ASCII letters in lower case.
    return CTMapKey<const ULONG*>::Hash(reinterpret_cast<const ULONG*>(key));
}
