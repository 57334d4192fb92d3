// The text reader on arbitrary bytes. The input holds up to four files, each
// behind a line "FILE"; a token "@0" to "@3" in a file becomes the memory name
// of that file, so includes (a file including itself among them) resolve to
// memory names; memory names of the input's own are spelt out of use, since
// a block of any size anywhere reads for ever. Whatever tree comes out must survive a trip through
// the stream form byte for byte.
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/MemoryFiles.h"
#include "fuzz/StableStreamForm.h"
#include "kticore/core/Exception.h"
#include "kticore/files/File.h"
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
    tree->Release();
    return 0;
}
