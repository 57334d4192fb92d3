// The text reader on arbitrary bytes. The input holds up to four files, each
// behind a line "FILE"; a token "@0" to "@3" in a file becomes the memory name
// of that file, so includes (a file including itself among them) resolve to
// memory names; memory names of the input's own are spelt out of use, since
// a block of any size anywhere reads for ever. Whatever tree comes out must
// survive a trip through the stream form byte for byte, and the text the writer
// makes of it must read back into a tree that the writer writes the same way.
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/MemoryFiles.h"
#include "fuzz/StableStreamForm.h"
#include "kticore/core/Exception.h"
#include "kticore/files/File.h"
#include "kticore/files/FileUtilities.h"
#include "kticore/params/ParamTools.h"

namespace {

using kt::fuzz::Block;
using kt::fuzz::Check;
using kt::fuzz::CheckStreamFormIsStable;
using kt::fuzz::DisarmMemoryNames;
using kt::fuzz::kBlockSize;
using kt::fuzz::MemoryName;

constexpr size_t kFiles = 4;
const std::string kFileSeparator = "\nFILE\n";

std::vector<std::string> SplitFiles(const std::uint8_t* data, size_t size) {
    std::string input(reinterpret_cast<const char*>(data), size);
    DisarmMemoryNames(input);
    std::vector<std::string> files;
    size_t at = 0;
    while (files.size() + 1 < kFiles) {
        const size_t cut = input.find(kFileSeparator, at);
        if (cut == std::string::npos)
            break;
        files.push_back(input.substr(at, cut - at));
        at = cut + kFileSeparator.size();
    }
    files.push_back(input.substr(at));
    return files;
}

// Lays the files out in the block, the tokens replaced by memory names of a
// fixed width, so that the final sizes are known before the text is made.
std::vector<std::string> LayOut(std::vector<std::string> files) {
    constexpr size_t kNameWidth = 32;
    const auto token = [](size_t i) { return "@" + std::to_string(i); };
    std::vector<size_t> sizes(files.size());
    for (size_t i = 0; i < files.size(); ++i) {
        size_t tokens = 0;
        for (size_t j = 0; j < files.size(); ++j)
            for (size_t at = files[i].find(token(j)); at != std::string::npos;
                 at = files[i].find(token(j), at + 2))
                ++tokens;
        sizes[i] = files[i].size() + tokens * (kNameWidth - 2);
    }
    std::vector<size_t> offsets(files.size());
    for (size_t i = 1; i < files.size(); ++i)
        offsets[i] = offsets[i - 1] + sizes[i - 1];
    std::vector<std::string> names;
    for (size_t i = 0; i < files.size(); ++i) {
        std::string name = MemoryName(offsets[i], sizes[i]);
        name.resize(kNameWidth, ' ');
        names.push_back(name);
    }
    for (std::string& file : files)
        for (size_t j = 0; j < names.size(); ++j)
            for (size_t at = file.find(token(j)); at != std::string::npos;
                 at = file.find(token(j), at + kNameWidth))
                file.replace(at, 2, names[j]);
    return files;
}

// The most header bytes the round trip of the text form lets a tree take:
// each header holds its section's whole path, so a section line of 65536
// bytes makes a tree of 32768 levels whose text is a gigabyte.
constexpr size_t kLongestHeaders = 4u << 20;

// The bytes of all the tree's paths, counted until they pass `bound`.
size_t PathBytes(IParam* top, size_t bound) {
    struct Level {
        IParam* section;
        CTEnum<const char*>* names;
        size_t pathLength;
    };
    top->AddRef();
    std::vector<Level> levels{{top, top->EnumSections(), 0}};
    size_t total = 0;
    while (!levels.empty()) {
        Level& level = levels.back();
        const char* name = nullptr;
        if (total <= bound && level.names != nullptr && level.names->Next(1, &name, nullptr)) {
            if (IParam* child = level.section->GetSection(name, 0)) {
                const size_t length = level.pathLength + 1 + std::strlen(name);
                total += length;
                levels.push_back({child, child->EnumSections(), length});
            }
            continue;
        }
        if (level.names != nullptr)
            level.names->Release();
        level.section->Release();
        levels.pop_back();
    }
    return total;
}

// The file the round trip writes and reads, removed at the end of the run.
class TextFile {
public:
    TextFile() : name(Fio_GetTempFileName()) {}
    ~TextFile() { Fio_DeleteFile(name.c_str()); }
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;

    const KTWCHAR* Name() const { return name.c_str(); }
    std::string Content() const {
        std::ifstream in(std::filesystem::path(std::u16string(name.begin(), name.end())), std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }

private:
    const std::basic_string<KTWCHAR> name;
};

const TextFile& Scratch() {
    static const TextFile file;
    return file;
}

// The text form of the tree as the file writer makes it; empty when the
// writer refuses the tree.
std::string WrittenText(IParam* tree) {
    try {
        Check(Param_Param2IniFile(tree, Scratch().Name()) == 1);
    } catch (const CXException& failure) {
        Check(failure.code == XE_BAD_ARGUMENT);
        return std::string();
    }
    return Scratch().Content();
}

void CheckTextFormIsStable(IParam* tree) {
    if (PathBytes(tree, kLongestHeaders) > kLongestHeaders)
        return;
    const std::string first = WrittenText(tree);
    if (first.empty())
        return;
    IParam* back = new_MemParam();
    Check(Param_IniFile2Param(Scratch().Name(), back) == 1);
    Check(WrittenText(back) == first);
    back->Release();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    const std::vector<std::string> files = LayOut(SplitFiles(data, size));
    size_t total = 0;
    for (const std::string& file : files) {
        if (total + file.size() > kBlockSize)
            return 0;
        std::copy(file.begin(), file.end(), Block().data + total);
        total += file.size();
    }
    const std::string top = MemoryName(0, files[0].size());
    const std::basic_string<KTWCHAR> name(top.begin(), top.end());
    IParam* tree = new_MemParam();
    try {
        Check(Param_IniFile2Param(name.c_str(), tree) == 1);
    } catch (const CXFileException&) {
        // An included local file that failed while it was read.
    }

    CheckStreamFormIsStable(tree);
    CheckTextFormIsStable(tree);
    tree->Release();
    return 0;
}
