// The typed half of IXFile, written once over the raw Read, Write and Seek of
// the file class that derives from it (I is IXFile or IXOutFile). Files count
// their references in a field of their own and close at the last Release.
#pragma once

#include <cstring>
#include <string>

#include "kticore/files/File.h"

namespace kt {

template <class I>
class CTypedFile : public CKTUnknownImpl<I> {
public:
    ULONG AddRef() override { return static_cast<ULONG>(++fileRefs); }
    // Closing may throw; the object then stays alive.
    ULONG Release() override {
        if (fileRefs > 1)
            return static_cast<ULONG>(--fileRefs);
        Close();
        delete this;
        return 0;
    }

    DWORD GetPosition() override { return this->Seek(0, 1); }

    BYTE ReadByte() override { return ReadValue<BYTE>(); }
    WORD ReadWord() override { return ReadValue<WORD>(); }
    DWORD ReadDWord() override { return ReadValue<DWORD>(); }
    double ReadDouble() override { return ReadValue<double>(); }
    void WriteByte(BYTE value) override { this->Write(&value, sizeof value); }
    void WriteWord(WORD value) override { this->Write(&value, sizeof value); }
    void WriteDWord(DWORD value) override { this->Write(&value, sizeof value); }
    void WriteDouble(double value) override { this->Write(&value, sizeof value); }
    void WriteStringW(const KTWCHAR* text) override {
        this->Write(text, static_cast<DWORD>((std::char_traits<KTWCHAR>::length(text) + 1) *
                                             sizeof(KTWCHAR)));
    }
    void WriteString(const char* text) override {
        this->Write(text, static_cast<DWORD>(std::strlen(text) + 1));
    }
    int ReadLineW(KTWCHAR* buffer, int maxChars) override { return ReadLineOf(buffer, maxChars); }
    int ReadLine(char* buffer, int maxChars) override { return ReadLineOf(buffer, maxChars); }

    DWORD GetLength() override {
        const DWORD position = GetPosition();
        const DWORD length = this->Seek(0, 2);
        this->Seek(static_cast<LONG>(position), 0);
        return length;
    }

protected:
    // The closing work of the last Release, before the object is destroyed.
    virtual void Close() {}

    // The rule of every file's Seek: origin 0, 1 or 2 (else XE_BAD_SEEK), a
    // result that is negative as a 32-bit number becomes 0, and a result past
    // the length throws XE_BAD_SEEK when `limited`.
    DWORD SeekTarget(LONG offset, DWORD origin, DWORD position, DWORD length, bool limited,
                     DWORD operation) {
        if (origin > 2)
            throw CXFileException(XE_BAD_SEEK, this->GetName(), operation);
        const DWORD base = origin == 0 ? 0 : origin == 1 ? position : length;
        DWORD target = base + static_cast<DWORD>(offset);
        if (static_cast<LONG>(target) < 0)
            target = 0;
        if (limited && target > length)
            throw CXFileException(XE_BAD_SEEK, this->GetName(), operation);
        return target;
    }

    // What a typed read that got `got` of `wanted` bytes does. A file throws
    // XE_END_OF_FILE with operation 1 when bytes are missing; those that
    // were there are consumed.
    virtual void CheckTypedRead(DWORD got, DWORD wanted) {
        if (got < wanted)
            throw CXFileException(XE_END_OF_FILE, this->GetName(), XFILEOP_READ);
    }

    template <class T>
    T ReadValue() {
        T value{};
        CheckTypedRead(this->Read(&value, sizeof value), sizeof value);
        return value;
    }

private:
    template <class Unit>
    int ReadLineOf(Unit* buffer, int maxChars) {
        if (maxChars <= 0) {
            buffer[0] = 0;
            return 0;
        }
        int count = 0;
        bool lineFeed = false;
        while (count < maxChars) {
            Unit unit = 0;
            if (this->Read(&unit, sizeof unit) < sizeof unit)
                break;
            buffer[count] = unit;
            if (unit == '\n') {
                lineFeed = true;
                break;
            }
            ++count;
        }
        // The line feed stays in the text when there is room behind it.
        buffer[lineFeed && count < maxChars - 1 ? count + 1 : count] = 0;
        return count;
    }

    long fileRefs = 1;
};

}  // namespace kt
