#include "translation/intercept/ImportPatch.h"

#include <cstddef>
#include <cstdint>

#include "platform/GuardedCopy.h"

namespace kt {
namespace {

constexpr std::size_t kPeHeaderOffsetField = 0x3C;
constexpr std::size_t kImportDescriptorsEnd = 0;

// The module's import descriptors, or null when its headers are not those of
// a 64-bit image with an import directory. The headers are read with guarded
// copies: a handle that is not a module at all must not bring the process
// down.
const IMAGE_IMPORT_DESCRIPTOR* ImportDescriptors(HMODULE module) {
    const auto* base = reinterpret_cast<const std::uint8_t*>(module);
    std::uint16_t dosMagic = 0;
    std::uint32_t peOffset = 0;
    if (!sys::CopyGuarded(&dosMagic, base, sizeof dosMagic) || dosMagic != IMAGE_DOS_SIGNATURE ||
        !sys::CopyGuarded(&peOffset, base + kPeHeaderOffsetField, sizeof peOffset))
        return nullptr;
    IMAGE_NT_HEADERS64 headers;
    if (!sys::CopyGuarded(&headers, base + peOffset, sizeof headers) || headers.Signature != IMAGE_NT_SIGNATURE ||
        headers.FileHeader.SizeOfOptionalHeader != sizeof(IMAGE_OPTIONAL_HEADER64) ||
        headers.OptionalHeader.NumberOfRvaAndSizes <= IMAGE_DIRECTORY_ENTRY_IMPORT)
        return nullptr;
    const IMAGE_DATA_DIRECTORY& imports = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (imports.VirtualAddress == 0)
        return nullptr;
    return reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
}

// One 8-byte store into a page made writable for it; the code that reaches
// the entry next sees the new address.
bool WriteEntry(const void** entry, const void* to) {
    DWORD previous = 0;
    if (!VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &previous))
        return false;
    *entry = to;
    VirtualProtect(entry, sizeof *entry, previous, &previous);
    FlushInstructionCache(GetCurrentProcess(), entry, sizeof *entry);
    return true;
}

}  // namespace

ImportPatch RewriteImportEntries(HMODULE module, const void* from, const void* to) {
    const IMAGE_IMPORT_DESCRIPTOR* descriptor = ImportDescriptors(module);
    if (descriptor == nullptr)
        return ImportPatch::NotAnImage;
    auto* base = reinterpret_cast<std::uint8_t*>(module);
    for (; descriptor->Name != kImportDescriptorsEnd; ++descriptor) {
        if (descriptor->FirstThunk == 0)
            continue;
        auto** entry = reinterpret_cast<const void**>(base + descriptor->FirstThunk);
        for (; *entry != nullptr; ++entry)
            if (*entry == from && !WriteEntry(entry, to))
                return ImportPatch::Refused;
    }
    return ImportPatch::Done;
}

}  // namespace kt
