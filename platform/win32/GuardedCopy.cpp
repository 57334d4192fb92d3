// The Win32 half of the guarded copy: a vectored exception handler that
// resumes a fault at a guarded instruction of this module at its fixup.
#include <windows.h>

#include "platform/GuardedFault.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;  // this module, as the linker places it

namespace kt::sys {
namespace {

// The section of this module that holds this code.
CodeRange ThisCode() {
    const auto base = reinterpret_cast<std::uintptr_t>(&__ImageBase);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + __ImageBase.e_lfanew);
    const auto here = reinterpret_cast<std::uintptr_t>(&ThisCode);
    // The section table follows the optional header.
    const auto* section = reinterpret_cast<const IMAGE_SECTION_HEADER*>(
        reinterpret_cast<const char*>(&headers->OptionalHeader) +
        headers->FileHeader.SizeOfOptionalHeader);
    for (WORD i = 0; i < headers->FileHeader.NumberOfSections; ++i, ++section) {
        const std::uintptr_t start = base + section->VirtualAddress;
        const std::uintptr_t end = start + section->Misc.VirtualSize;
        if (here >= start && here < end)
            return {start, end};
    }
    return {};
}

const CodeRange thisCode = ThisCode();

// An access violation, an in-page error of a mapped file (Wine reports one
// as an access violation) or a guard page met at a guarded instruction
// resumes at its fixup; every other exception goes on to the handlers behind.
LONG CALLBACK ResumeGuardedFault(EXCEPTION_POINTERS* exception) {
    const DWORD code = exception->ExceptionRecord->ExceptionCode;
    if (code != EXCEPTION_ACCESS_VIOLATION && code != EXCEPTION_IN_PAGE_ERROR &&
        code != STATUS_GUARD_PAGE_VIOLATION)
        return EXCEPTION_CONTINUE_SEARCH;
    const std::uintptr_t fixup = GuardedFixup(exception->ContextRecord->Rip, thisCode);
    if (fixup == 0)
        return EXCEPTION_CONTINUE_SEARCH;
    exception->ContextRecord->Rip = fixup;
    return EXCEPTION_CONTINUE_EXECUTION;
}

// First in line while the module is loaded.
class FaultHandler {
public:
    FaultHandler() : handle(AddVectoredExceptionHandler(1, ResumeGuardedFault)) {}
    ~FaultHandler() { RemoveVectoredExceptionHandler(handle); }
    FaultHandler(const FaultHandler&) = delete;
    FaultHandler& operator=(const FaultHandler&) = delete;

private:
    void* handle;
};

const FaultHandler faultHandler;

}  // namespace
}  // namespace kt::sys
