// The POSIX implementation of the multibyte code page. Linux's C library has
// no such state, so the library keeps it and exports the runtime's three
// functions for hosts (see kticore/platform/posix/MbCType.h).
#include "platform/MultiByte.h"

#include <atomic>

#include "platform/TextConversion.h"
#include "platform/posix/CodePages.h"

namespace {

using kt::sys::posix::CodePage;

std::atomic<const CodePage*> current{kt::sys::posix::FindCodePage(0)};

}  // namespace

extern "C" int _setmbcp(int codePage) {
    const CodePage* page = nullptr;
    switch (codePage) {
        case _MB_CP_ANSI:
        case _MB_CP_LOCALE:
        case _MB_CP_SBCS:
            page = kt::sys::posix::FindCodePage(0);
            break;
        case _MB_CP_OEM:
            return -1;
        default:
            page = codePage > 0 ? kt::sys::posix::FindCodePage(static_cast<unsigned>(codePage))
                                : nullptr;
            break;
    }
    if (page == nullptr)
        return -1;
    current.store(page, std::memory_order_relaxed);
    return 0;
}

extern "C" int _getmbcp(void) {
    const CodePage* page = current.load(std::memory_order_relaxed);
    return page->IsDoubleByte() ? static_cast<int>(page->number) : 0;
}

extern "C" int _ismbblead(unsigned int byte) {
    return byte < 256 &&
           current.load(std::memory_order_relaxed)->IsLead(static_cast<unsigned char>(byte));
}

namespace kt::sys {

bool IsLeadByte(unsigned char byte) {
    return current.load(std::memory_order_relaxed)->IsLead(byte);
}

bool IsSpaceCharacter(unsigned code) {
    // A single byte by the C locale's isspace; a double-byte character by its
    // class in the code page, where the ideographic space is the one blank.
    constexpr KTWCHAR kIdeographicSpace = 0x3000;
    if (code < 256)
        return code == ' ' || (code >= '\t' && code <= '\r');
    const char bytes[2] = {static_cast<char>(code >> 8), static_cast<char>(code & 0xFF)};
    KTWCHAR unit = 0;
    return MultiByteToWide(MultiByteCodePage(), bytes, 2, &unit, 1) == 1 &&
           unit == kIdeographicSpace;
}

unsigned MultiByteCodePage() { return current.load(std::memory_order_relaxed)->number; }

}  // namespace kt::sys
