// The debugger's output: a debug aid of the library writes lines there.
#pragma once

namespace kt::sys {

// Hands `text` to the debugger, which shows it as it is (OutputDebugStringA);
// natively it goes to the standard error.
void DebugOutput(const char* text);

}  // namespace kt::sys
