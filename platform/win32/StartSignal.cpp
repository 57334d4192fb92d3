// The Win32 start signal: a named manual-reset event.
#include "platform/StartSignal.h"

#include <cstdio>

#include "platform/win32/WaitOutcome.h"

namespace kt::sys {

void NameStartSignal(const char* text, char* dest, size_t size) { std::snprintf(dest, size, "%s", text); }

static HANDLE Handle(StartSignal* signal) { return reinterpret_cast<HANDLE>(signal); }

StartSignal* CreateStartSignal(const char* name) {
    return reinterpret_cast<StartSignal*>(CreateEventA(nullptr, TRUE, FALSE, name));
}

WaitOutcome WaitForStartSignal(StartSignal* signal, DWORD timeoutMs) {
    return WaitForHandle(Handle(signal), timeoutMs);
}

void CloseStartSignal(StartSignal* signal) { CloseHandle(Handle(signal)); }

}  // namespace kt::sys
