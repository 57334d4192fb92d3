// The findings of `check`: a dictionary against the modules it translates.
#pragma once

#include <string>
#include <vector>

#include "tools/kttool/ModuleTexts.h"
#include "tools/kttool/WldEntries.h"

namespace kttool {

struct Finding {
    unsigned line = 0;  // 0: the finding has no line of the file
    std::string kind;   // a short name: "untranslated", "duplicate", ...
    std::string message;
};

// `keyCodePage` is the code page keys are read in, 0 for the language's.
// Findings in the order of their lines, those without a line last.
std::vector<Finding> CheckDictionary(const WldEntries& dictionary,
                                     const std::vector<Module>& modules, unsigned keyCodePage);

}  // namespace kttool
