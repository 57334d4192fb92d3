// The library's failure codes in the words of kttool's messages.
#pragma once

#include <string>

#include "kticore/core/Exception.h"

namespace kttool {

std::string FailureWords(DWORD code);

}  // namespace kttool
