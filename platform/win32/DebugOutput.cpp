// The Win32 half of the debugger output.
#include "platform/DebugOutput.h"

#include <windows.h>

namespace kt::sys {

void DebugOutput(const char* text) { OutputDebugStringA(text); }

}  // namespace kt::sys
