// Arbitrary bytes as a PE file: its resource directory read and the texts
// of its string tables, menus and dialogs taken out. A malformed file is
// answered with FormatError, never with a read outside the bytes; what is
// read is never larger than the file.
#include <cstdint>

#include "fuzz/FuzzStreams.h"
#include "tools/kttool/ModuleTexts.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    const kttool::Bytes file(data, data + size);
    try {
        const std::vector<kttool::PeResource> resources = kttool::ReadPeResources(file);
        for (const kttool::PeResource& resource : resources)
            kt::fuzz::Check(resource.data.size() <= size);
        size_t nextScope = 1;
        for (const kttool::ModuleText& text : kttool::TextsOfResources(resources, nextScope))
            kt::fuzz::Check(!text.text.empty() && text.text.size() <= size / 2);
    } catch (const kttool::FormatError&) {
    }
    return 0;
}
