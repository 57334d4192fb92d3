// The resource directory of a PE file, read from the file's bytes without
// loading it: headers, section table, and the three levels of the resource
// tree (type, name, language) down to each resource's data.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "kticore/platform/Platform.h"

namespace kttool {

using Bytes = std::vector<std::uint8_t>;
using WideText = std::basic_string<KTWCHAR>;

// A file that is not what it claims to be: the message says what and where.
class FormatError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A resource type or name: a number, or a string of the directory.
struct ResourceName {
    bool isNumber = true;
    std::uint32_t number = 0;
    WideText text;

    static ResourceName Number(std::uint32_t value) { return {true, value, {}}; }
};

// The number, or the name with each unit beyond ASCII as '?': for messages.
std::string Describe(const ResourceName& name);

// Resource types whose texts are translated.
constexpr std::uint32_t kMenuType = 4;
constexpr std::uint32_t kDialogType = 5;
constexpr std::uint32_t kStringType = 6;

// Bytes of a file, valid while the file's bytes are. Resources are not
// copied: many entries may name one run of bytes.
class ByteView {
public:
    ByteView() = default;
    ByteView(const std::uint8_t* bytes, size_t count) : bytes(bytes), count(count) {}
    size_t size() const { return count; }
    const std::uint8_t* data() const { return bytes; }
    std::uint8_t operator[](size_t at) const { return bytes[at]; }

private:
    const std::uint8_t* bytes = nullptr;
    size_t count = 0;
};

struct PeResource {
    ResourceName type;
    ResourceName name;
    std::uint32_t language = 0;
    ByteView data;  // within the file
};

// Every resource of the image in `file`, in directory order; none for an
// image without a resource directory. The resources' data lie in `file`. Throws FormatError for
// anything that is not a well-formed image: nothing outside `file` is ever read.
std::vector<PeResource> ReadPeResources(const Bytes& file);

}  // namespace kttool
