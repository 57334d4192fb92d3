// Menu templates, classic (MENU) and extended (MENUEX): the items with text
// that a loaded menu's walk translates.
#pragma once

#include <vector>

#include "tools/kttool/ModuleTexts.h"

namespace kttool {

// Appends the texts of menu `resource`; throws FormatError where the
// template runs past its end or nests deeper than any menu does.
void AppendMenuTexts(const PeResource& resource, size_t& nextScope, std::vector<ModuleText>& out);

}  // namespace kttool
