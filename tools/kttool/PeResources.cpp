#include "tools/kttool/PeResources.h"

#include <algorithm>
#include <cstdio>
#include <set>

namespace kttool {
namespace {

constexpr std::uint16_t kDosMagic = 0x5A4D;  // "MZ"
constexpr size_t kNewHeaderField = 0x3C;
constexpr std::uint32_t kPeSignature = 0x00004550;  // "PE\0\0"
constexpr size_t kCoffHeaderSize = 20;
constexpr size_t kSectionCountField = 2;
constexpr size_t kOptionalHeaderSizeField = 16;
constexpr std::uint16_t kPe32Magic = 0x10B;
constexpr std::uint16_t kPe32PlusMagic = 0x20B;
// Within the optional header: the count of data directories and the first.
constexpr size_t kDirectoryCountPe32 = 92;
constexpr size_t kDirectoryCountPe32Plus = 108;
constexpr size_t kDataDirectorySize = 8;
constexpr std::uint32_t kResourceDirectory = 2;
constexpr size_t kSectionHeaderSize = 40;
constexpr size_t kSectionVirtualAddress = 12;
constexpr size_t kSectionRawSize = 16;
constexpr size_t kSectionRawOffset = 20;

// The resource tree: type, name and language directories, then data entries.
constexpr int kTreeLevels = 3;
constexpr size_t kDirectoryTableSize = 16;
constexpr size_t kNamedEntryCountField = 12;
constexpr size_t kIdEntryCountField = 14;
constexpr size_t kDirectoryEntrySize = 8;
constexpr size_t kDataEntrySize = 16;
// In a directory entry: the name field holds a string's offset, the target
// field a subdirectory's offset.
constexpr std::uint32_t kHighBit = 0x80000000u;

std::string Hex(std::uint64_t value) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(value));
    return text;
}

struct Section {
    std::uint32_t virtualAddress;
    std::uint32_t rawSize;
    std::uint32_t rawOffset;
};

class Image {
public:
    explicit Image(const Bytes& file) : file(file) {}

    std::uint16_t Word(std::uint64_t offset) const {
        return static_cast<std::uint16_t>(Little(offset, 2));
    }
    std::uint32_t Dword(std::uint64_t offset) const {
        return static_cast<std::uint32_t>(Little(offset, 4));
    }

    void Need(std::uint64_t offset, std::uint64_t count, const char* what) const {
        if (offset > file.size() || count > file.size() - offset)
            throw FormatError(std::string(what) + " at file offset " + Hex(offset) +
                              " runs past the end of the file");
    }

    // The file offset of `count` bytes at `rva`, which must lie in the raw
    // data of one section.
    std::uint64_t OffsetOf(std::uint64_t rva, std::uint64_t count, const char* what) const {
        for (const Section& section : sections) {
            if (rva < section.virtualAddress)
                continue;
            const std::uint64_t into = rva - section.virtualAddress;
            if (into > section.rawSize || count > section.rawSize - into)
                continue;
            Need(section.rawOffset + into, count, what);
            return section.rawOffset + into;
        }
        throw FormatError(std::string(what) + " at RVA " + Hex(rva) + " lies in no section's data");
    }

    const std::uint8_t* At(std::uint64_t offset) const { return file.data() + offset; }

    std::vector<Section> sections;

private:
    std::uint64_t Little(std::uint64_t offset, unsigned size) const {
        Need(offset, size, "a header field");
        std::uint64_t value = 0;
        for (unsigned i = size; i-- > 0;)
            value = value << 8 | file[offset + i];
        return value;
    }

    const Bytes& file;
};

// The resource directory: every offset in it is relative to its start and
// must lie within its size.
class ResourceTree {
public:
    ResourceTree(const Image& image, std::uint32_t rva, std::uint32_t size, std::uint64_t fileSize)
        : image(image), rva(rva), size(size), unclaimed(std::min<std::uint64_t>(size, fileSize)) {}

    void Walk(std::vector<PeResource>& out) {
        PeResource resource;
        WalkDirectory(0, 0, resource, out);
    }

private:
    std::uint64_t Offset(std::uint64_t relative, std::uint64_t count, const char* what) const {
        if (relative > size || count > size - relative)
            throw FormatError(std::string(what) + " at " + Hex(relative) +
                              " lies outside the resource directory (" + Hex(size) + " bytes)");
        return image.OffsetOf(rva + relative, count, what);
    }

    // A tree never reaches one directory twice: where one does, the
    // directory loops or is shared, and a walk would not end or would blow up.
    void WalkDirectory(std::uint64_t relative, int level, PeResource& path,
                       std::vector<PeResource>& out) {
        if (!visited.insert(relative).second)
            throw FormatError("resource directory at " + Hex(relative) +
                              " is reached twice (a loop)");
        const std::uint64_t table =
            Offset(relative, kDirectoryTableSize, "a resource directory table");
        const size_t count = size_t{image.Word(table + kNamedEntryCountField)} +
                             image.Word(table + kIdEntryCountField);
        Claim(relative, kDirectoryTableSize + count * kDirectoryEntrySize, "resource directory");
        for (size_t i = 0; i < count; ++i) {
            const std::uint64_t entry =
                Offset(relative + kDirectoryTableSize + i * kDirectoryEntrySize,
                       kDirectoryEntrySize, "a resource directory entry");
            const std::uint32_t nameField = image.Dword(entry);
            const std::uint32_t target = image.Dword(entry + 4);
            const ResourceName name = (nameField & kHighBit) != 0 ? Name(nameField & ~kHighBit)
                                                                  : ResourceName::Number(nameField);
            const bool isDirectory = (target & kHighBit) != 0;
            if (isDirectory != (level + 1 < kTreeLevels))
                throw FormatError("resource directory entry at " + Hex(relative) + " level " +
                                  std::to_string(level + 1) +
                                  (isDirectory ? " goes deeper than three levels"
                                               : " holds data above the language level"));
            if (level == 0)
                path.type = name;
            else if (level == 1)
                path.name = name;
            if (isDirectory) {
                WalkDirectory(target & ~kHighBit, level + 1, path, out);
                continue;
            }
            path.language = name.number;
            Data(target, path);
            out.push_back(path);
        }
    }

    ResourceName Name(std::uint64_t relative) const {
        const std::uint64_t at = Offset(relative, 2, "a resource name");
        const size_t length = image.Word(at);
        const std::uint64_t text = Offset(relative + 2, length * 2, "a resource name");
        ResourceName name;
        name.isNumber = false;
        for (size_t i = 0; i < length; ++i)
            name.text += static_cast<KTWCHAR>(image.Word(text + 2 * i));
        return name;
    }

    // The tables and data entries of a tree lie side by side: together they
    // fit in the directory, and in the file. Tables that overlap would let a
    // small file stand for millions of resources.
    void Claim(std::uint64_t relative, std::uint64_t count, const char* what) {
        if (count > unclaimed)
            throw FormatError(std::string(what) + " at " + Hex(relative) + " needs " + Hex(count) +
                              " bytes more than the resource directory has: its tables overlap");
        unclaimed -= count;
    }

    void Data(std::uint64_t relative, PeResource& resource) {
        Claim(relative, kDataEntrySize, "resource data entry");
        const std::uint64_t entry = Offset(relative, kDataEntrySize, "a resource data entry");
        const std::uint32_t dataRva = image.Dword(entry);
        const std::uint32_t dataSize = image.Dword(entry + 4);
        const std::uint64_t data = image.OffsetOf(dataRva, dataSize, "resource data");
        resource.data = ByteView(image.At(data), dataSize);
    }

    const Image& image;
    std::uint32_t rva;
    std::uint32_t size;
    std::uint64_t unclaimed;  // bytes of the directory no table or data entry has taken
    std::set<std::uint64_t> visited;
};

}  // namespace

std::string Describe(const ResourceName& name) {
    if (name.isNumber)
        return std::to_string(name.number);
    std::string text;
    for (const KTWCHAR unit : name.text)
        text += unit < 0x80 ? static_cast<char>(unit) : '?';
    return text;
}

std::vector<PeResource> ReadPeResources(const Bytes& file) {
    Image image(file);
    if (file.size() < kNewHeaderField + 4 || image.Word(0) != kDosMagic)
        throw FormatError("not an executable: no MZ header");
    const std::uint64_t pe = image.Dword(kNewHeaderField);
    if (pe + 4 > file.size() || image.Dword(pe) != kPeSignature)
        throw FormatError("not a PE executable: no PE signature at " + Hex(pe));
    const std::uint64_t coff = pe + 4;
    const size_t sectionCount = image.Word(coff + kSectionCountField);
    const size_t optionalSize = image.Word(coff + kOptionalHeaderSizeField);
    const std::uint64_t optional = coff + kCoffHeaderSize;
    image.Need(optional, optionalSize, "the optional header");
    const std::uint16_t magic = optionalSize >= 2 ? image.Word(optional) : 0;
    if (magic != kPe32Magic && magic != kPe32PlusMagic)
        throw FormatError("not a PE executable: optional header magic " + Hex(magic));
    const size_t countField = magic == kPe32Magic ? kDirectoryCountPe32 : kDirectoryCountPe32Plus;
    if (optionalSize < countField + 4)
        throw FormatError("optional header of " + std::to_string(optionalSize) +
                          " bytes is cut short");
    const std::uint32_t directories = image.Dword(optional + countField);
    const std::uint64_t resourceEntry =
        optional + countField + 4 + kResourceDirectory * kDataDirectorySize;
    if (directories <= kResourceDirectory ||
        resourceEntry + kDataDirectorySize > optional + optionalSize)
        return {};
    const std::uint32_t resourceRva = image.Dword(resourceEntry);
    const std::uint32_t resourceSize = image.Dword(resourceEntry + 4);
    if (resourceRva == 0 || resourceSize == 0)
        return {};
    const std::uint64_t sectionTable = optional + optionalSize;
    image.Need(sectionTable, sectionCount * kSectionHeaderSize, "the section table");
    for (size_t i = 0; i < sectionCount; ++i) {
        const std::uint64_t header = sectionTable + i * kSectionHeaderSize;
        image.sections.push_back({image.Dword(header + kSectionVirtualAddress),
                                  image.Dword(header + kSectionRawSize),
                                  image.Dword(header + kSectionRawOffset)});
    }
    std::vector<PeResource> resources;
    ResourceTree(image, resourceRva, resourceSize, file.size()).Walk(resources);
    return resources;
}

}  // namespace kttool
