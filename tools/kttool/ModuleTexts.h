// The translatable texts of a module, found the way the running
// application's texts reach the dictionary: each string of a string table
// block, each menu item with text, a dialog's caption and the texts of its
// buttons and statics.
#pragma once

#include <string>
#include <vector>

#include "tools/kttool/PeResources.h"

namespace kttool {

// Where a text stands in its module; texts of one scope (one menu level,
// one dialog) share the keyboard's accelerator letters.
struct ModuleText {
    unsigned kind = 0;      // kSuppKindDialog, kSuppKindMenu or kSuppKindString
    ResourceName resource;  // for strings, the block: string id / 16 + 1
    std::uint32_t language = 0;
    std::string position;  // "string 17", "item 2.1", "caption", "control 3"
    size_t scope = 0;
    WideText text;
};

struct Module {
    std::string fileName;  // the path behind its last separator, for messages
    WideText keyName;      // the same, wide, as the library's keys name it
    std::vector<ModuleText> texts;
    bool rewritesFont = false;  // a dialog sets its font: the rewriting gives it the dictionary's
};

// "app.dll dialog 100 control 3": where a text of module `fileName` stands.
std::string WhereOf(const std::string& fileName, const ModuleText& text);

// The path behind its last separator.
std::string ModuleFileName(const std::string& path);

// The file name as a running application's keys hold it: GetModuleFileNameW's
// path behind its last separator, wide. Paths arrive in the ANSI code page on
// Windows, in UTF-8 natively.
WideText ModuleKeyName(const std::string& path);

// Throws FormatError for a malformed image or resource, std::runtime_error
// for a file that cannot be read.
Module ReadModule(const std::string& path);

// The texts of resources already read; `nextScope` numbers the scopes.
std::vector<ModuleText> TextsOfResources(const std::vector<PeResource>& resources,
                                         size_t& nextScope);

// Read at once, whole: `what` names the file in a failure.
Bytes ReadWholeFile(const std::string& path);

}  // namespace kttool
