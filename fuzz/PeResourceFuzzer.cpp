// Arbitrary bytes as a PE file: its resource directory read and the texts
// of its string tables, menus and dialogs taken out. A malformed file is
// answered with FormatError, never with a read outside the bytes; what is
// read is never larger than the file, nor are there more resources than
// the file has room for.
#include <cstdint>

#include "fuzz/FuzzStreams.h"
#include "tools/kttool/ModuleTexts.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    const kttool::Bytes file(data, data + size);
    try {
        const std::vector<kttool::PeResource> resources = kttool::ReadPeResources(file);
        // Each resource has a directory entry and a data entry of its own.
        constexpr size_t kBytesOfOneResource = 8 + 16;
        kt::fuzz::Check(resources.size() <= size / kBytesOfOneResource);
        for (const kttool::PeResource& resource : resources)
            kt::fuzz::Check(resource.data.size() <= size);
        size_t nextScope = 1;
        for (const kttool::ModuleText& text : kttool::TextsOfResources(resources, nextScope))
            kt::fuzz::Check(!text.text.empty() && text.text.size() <= size / 2);
    } catch (const kttool::FormatError&) {
    }
    return 0;
}
