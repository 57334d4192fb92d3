#include "kticore/core/Exception.h"

#include "core/Library.h"

namespace {

// File exceptions must be throwable when memory has run out, so their names
// live here. A slot is free while its first unit is 0; it has no lock.
constexpr int kNameSlots = 4;
constexpr int kNameSlotUnits = 512;
KTWCHAR ExceptionNamePool[kNameSlots][kNameSlotUnits];

bool IsHighSurrogate(KTWCHAR unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

// The first free slot, or the first slot when all four are busy. A name too
// long for a slot keeps its first 511 units, without a split surrogate pair.
KTWCHAR* TakeNameSlot(const KTWCHAR* name) {
    KTWCHAR* slot = ExceptionNamePool[0];
    for (KTWCHAR* candidate : ExceptionNamePool) {
        if (candidate[0] == 0) {
            slot = candidate;
            break;
        }
    }
    int length = 0;
    if (name != nullptr) {
        while (length < kNameSlotUnits - 1 && name[length] != 0) {
            slot[length] = name[length];
            ++length;
        }
        if (length == kNameSlotUnits - 1 && name[length] != 0 && IsHighSurrogate(slot[length - 1]))
            --length;
    }
    slot[length] = 0;
    return slot;
}

}  // namespace

CXException::CXException(DWORD code) : code(code), module(kt::LibraryModule()) {}
CXException::~CXException() = default;
int CXException::GetCode() { return static_cast<int>(code); }
void CXException::Report() {}

CXMemException::CXMemException() : CXException(XE_NO_MEMORY) {}

CXEofException::CXEofException() : CXException(XE_END_OF_FILE) {}

CXFileException::CXFileException(DWORD code, const KTWCHAR* name, DWORD operation)
    : CXException(code), name(TakeNameSlot(name)), operation(operation) {}

CXFileException::~CXFileException() { const_cast<KTWCHAR*>(name)[0] = 0; }

CXIFaceException::CXIFaceException(const type_info* iface)
    : CXException(XE_BAD_ARGUMENT), iface(iface) {}

void XThrowFileError(DWORD win32Error, const KTWCHAR* name, DWORD operation) {
    throw CXFileException(XErrorFromWin32(win32Error), name, operation);
}
