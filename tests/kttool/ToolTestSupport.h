// What kttool's tests share: the module of test texts, a scratch directory
// with narrow names, and the program run in-process with its output caught.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/ScratchDirectory.h"
#include "tools/kttool/Commands.h"

namespace kttool::test {

// Built from fixtures/texts.rc: by the Windows build, or committed for the
// native one.
inline const std::string kTextsModule = KTTOOL_TEXTS_MODULE;

struct ToolRun {
    int status;
    std::string out;
    std::string err;
};

inline ToolRun RunKtTool(const Arguments& args) {
    std::ostringstream out;
    std::ostringstream err;
    const int status = RunTool(args, out, err);
    return {status, out.str(), err.str()};
}

// Test directories have ASCII names.
class Scratch {
public:
    std::string operator/(const std::string& leaf) const {
        const auto wide = directory.Path();
        return std::string(wide.begin(), wide.end()) + "/" + leaf;
    }

private:
    kt::test::ScratchDirectory directory;
};

// A file's lines with their line ends, and back.
inline std::vector<std::string> LinesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line + "\n");
    return lines;
}

inline void WriteLines(const std::string& path, const std::vector<std::string>& lines) {
    std::ofstream file(path, std::ios::binary);
    for (const std::string& line : lines)
        file << line;
}

}  // namespace kttool::test
