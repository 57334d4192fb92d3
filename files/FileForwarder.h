// A file object whose data is another file's: every operation from Read to
// GetLength goes unchanged to the inner file. The name, the inner file's
// life and Commit are the deriving class's.
#pragma once

#include "kticore/files/File.h"

namespace kt {

template <class Interface, class Inner = IXFile>
class CTFileForwarder : public CKTUnknownImpl<Interface> {
public:
    DWORD Read(void* buffer, DWORD size) override { return inner->Read(buffer, size); }
    void Write(const void* buffer, DWORD size) override { inner->Write(buffer, size); }
    DWORD Seek(LONG offset, DWORD origin) override { return inner->Seek(offset, origin); }
    DWORD GetPosition() override { return inner->GetPosition(); }
    int Flush() override { return inner->Flush(); }
    BYTE ReadByte() override { return inner->ReadByte(); }
    WORD ReadWord() override { return inner->ReadWord(); }
    DWORD ReadDWord() override { return inner->ReadDWord(); }
    double ReadDouble() override { return inner->ReadDouble(); }
    void WriteByte(BYTE value) override { inner->WriteByte(value); }
    void WriteWord(WORD value) override { inner->WriteWord(value); }
    void WriteDWord(DWORD value) override { inner->WriteDWord(value); }
    void WriteDouble(double value) override { inner->WriteDouble(value); }
    void WriteStringW(const KTWCHAR* text) override { inner->WriteStringW(text); }
    void WriteString(const char* text) override { inner->WriteString(text); }
    int ReadLineW(KTWCHAR* buffer, int maxChars) override {
        return inner->ReadLineW(buffer, maxChars);
    }
    int ReadLine(char* buffer, int maxChars) override { return inner->ReadLine(buffer, maxChars); }
    DWORD GetLength() override { return inner->GetLength(); }

protected:
    Inner* inner = nullptr;  // one reference
};

}  // namespace kt
