// The POSIX half of the debugger output: there is no debugger channel, so
// the text goes to the standard error, where a debugger shows it too.
#include "platform/DebugOutput.h"

#include <cstdio>

namespace kt::sys {

void DebugOutput(const char* text) { std::fputs(text, stderr); }

}  // namespace kt::sys
