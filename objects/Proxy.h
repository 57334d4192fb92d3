// The stand-in for an object of a class that this process does not know: it
// keeps the class name and the payload byte for byte and writes them back
// unchanged, so data passes through a program that can not interpret it.
#pragma once

#include "kticore/objects/Persist.h"

namespace kt {

class CXProxy final : public CKTUnknownImpl<IPersistXStream> {
public:
    CXProxy(const char* className, ULONG size) : className(className), size(size) {}
    ~CXProxy() override { delete[] data; }

    int InternalQueryInterface(const type_info& wanted, void** out) override;

    const char* GetClassName() override { return className; }
    ULONG GetSize() override { return size; }
    // Throws XE_SHORT_DATA, before reading anything, when the stream holds
    // fewer bytes than the stored length; the proxy keeps what it held.
    void Load(IXStream* stream) override;
    void Save(IXStream* stream) override;

private:
    CXString className;
    ULONG size;
    unsigned char* data = nullptr;
};

}  // namespace kt
