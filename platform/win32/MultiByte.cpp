// The Win32 implementation of the multibyte code page: the C runtime's own
// state, which hosts set with _setmbcp.
#include "platform/MultiByte.h"

#include <mbctype.h>
#include <mbstring.h>

namespace kt::sys {

bool IsLeadByte(unsigned char byte) { return _ismbblead(byte) != 0; }

bool IsSpaceCharacter(unsigned code) { return _ismbcspace(code) != 0; }

unsigned MultiByteCodePage() {
    // The runtime reports 0 for a single-byte code page; text is then in the
    // ANSI code page.
    int codePage = _getmbcp();
    return codePage != 0 ? static_cast<unsigned>(codePage) : GetACP();
}

}  // namespace kt::sys
