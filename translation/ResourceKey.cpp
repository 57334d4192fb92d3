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
std::basic_string<Unit> Ascii(const std::string& text) {
    return std::basic_string<Unit>(text.begin(), text.end());
}

// "<file>#<kind>#<id>" or "<file>#<kind>#<name>" into `out`, where <file> is
// the module's path behind its last ':', '\' or '/'.
template <class Unit>
void MakeKey(const std::basic_string<Unit>& path, const void* id, Unit* out, unsigned kind) {
    const size_t separator = path.find_last_of(Ascii<Unit>(":\\/"));
    if (separator == std::basic_string<Unit>::npos)
        return;
    std::basic_string<Unit> key =
        path.substr(separator + 1) + Unit('#') + Ascii<Unit>(std::to_string(kind)) + Unit('#');
    if (IsNumericId(id))
        key += Ascii<Unit>(std::to_string(static_cast<int>(reinterpret_cast<std::uintptr_t>(id))));
    else
        key += static_cast<const Unit*>(id);
    std::char_traits<Unit>::copy(out, key.c_str(), key.size() + 1);
}

}  // namespace

void Supp_MakeKeyA(HMODULE module, const void* id, char* out, unsigned kind) {
    MakeKey(kt::sys::ModuleFileNameA(module), id, out, kind);
}

void Supp_MakeKeyW(HMODULE module, const void* id, KTWCHAR* out, unsigned kind) {
    MakeKey(kt::sys::ModuleFileNameW(module), id, out, kind);
}

DWORD Supp_HashKey(const char* key) {
    // The case-blind hash of the maps of narrow names: h * 257 + c over the
    // bytes taken as signed, ASCII letters in lower case.
    return CTMapKey<const ULONG*>::Hash(reinterpret_cast<const ULONG*>(key));
}
