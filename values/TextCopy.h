// The owned text arrays of variants: array-new copies with a terminator.
#pragma once

#include <cstddef>

#include "kticore/platform/Platform.h"

namespace kt {

char* CopyText(const char* text, size_t length);
KTWCHAR* CopyText(const KTWCHAR* text, size_t length);
// Null for null text.
char* CopyText(const char* text);
KTWCHAR* CopyText(const KTWCHAR* text);

}  // namespace kt
