#include "translation/intercept/ImportPatch.h"

#include <cstddef>
#include <cstdint>

#include "platform/GuardedCopy.h"

namespace kt {
namespace {

constexpr std::size_t kPeHeaderOffsetField = 0x3C;

// A module's image as far as its headers say, every byte of it read with a
// guarded copy: a handle that is not a module at all, or a file mapped flat
// rather than loaded, must not bring the process down.
class ModuleImage {
public:
    explicit ModuleImage(HMODULE module) : base(reinterpret_cast<std::uint8_t*>(module)) {}

    // The offset of the import descriptors, or 0 when the headers are not
    // those of a 64-bit image with an import directory.
    DWORD ImportDescriptors() {
        std::uint16_t dosMagic = 0;
        std::uint32_t peOffset = 0;
        IMAGE_NT_HEADERS64 headers;
        if (!sys::CopyGuarded(&dosMagic, base, sizeof dosMagic) || dosMagic != IMAGE_DOS_SIGNATURE ||
            !sys::CopyGuarded(&peOffset, base + kPeHeaderOffsetField, sizeof peOffset) ||
            !sys::CopyGuarded(&headers, base + peOffset, sizeof headers) || headers.Signature != IMAGE_NT_SIGNATURE ||
            headers.FileHeader.SizeOfOptionalHeader != sizeof(IMAGE_OPTIONAL_HEADER64) ||
            headers.OptionalHeader.NumberOfRvaAndSizes <= IMAGE_DIRECTORY_ENTRY_IMPORT)
            return 0;
        size = headers.OptionalHeader.SizeOfImage;
        return headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    }

    // A value inside the image; false outside it or where it cannot be read.
    template <class Value>
    bool Read(std::size_t offset, Value& value) const {
        return offset <= size && size - offset >= sizeof value && sys::CopyGuarded(&value, base + offset, sizeof value);
    }

    template <class Value>
    Value* At(std::size_t offset) const {
        return reinterpret_cast<Value*>(base + offset);
    }

private:
    std::uint8_t* base;
    std::size_t size = 0;
};

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
    ModuleImage image(module);
    std::size_t descriptorAt = image.ImportDescriptors();
    if (descriptorAt == 0)
        return ImportPatch::NotAnImage;
    for (;; descriptorAt += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
        IMAGE_IMPORT_DESCRIPTOR descriptor;
        if (!image.Read(descriptorAt, descriptor))
            return ImportPatch::NotAnImage;
        if (descriptor.Name == 0)
            return ImportPatch::Done;
        for (std::size_t entryAt = descriptor.FirstThunk; entryAt != 0; entryAt += sizeof(void*)) {
            const void* entry = nullptr;
            if (!image.Read(entryAt, entry))
                return ImportPatch::NotAnImage;
            if (entry == nullptr)
                break;
            if (entry == from && !WriteEntry(image.At<const void*>(entryAt), to))
                return ImportPatch::Refused;
        }
    }
}

}  // namespace kt
