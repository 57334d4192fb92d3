// The typed half of IXStream, written once over the raw Read, Write and Seek
// of whichever stream derives from it: every typed operation goes through the
// object's own Read and Write, so a subclass inherits it.
#pragma once

#include "kticore/core/Exception.h"
#include "kticore/streams/Stream.h"

namespace kt {

class CTypedStream : public CKTUnknownImpl<IXStream> {
public:
    unsigned GetPosition() override { return Seek(0, 1); }

    unsigned char ReadByte() override { return ReadValue<unsigned char>(); }
    unsigned short ReadWord() override { return ReadValue<unsigned short>(); }
    ULONG ReadDWord() override { return ReadValue<ULONG>(); }
    double ReadDouble() override { return ReadValue<double>(); }
    int ReadLineW(KTWCHAR* buffer, int maxChars) override;
    int ReadLine(char* buffer, int maxChars) override;
    int ReadVariant(tagKTVARIANT* value) override;
    void WriteVariant(const tagKTVARIANT* value) override;

    void WriteByte(unsigned char value) override { Write(&value, sizeof value); }
    void WriteWord(unsigned short value) override { Write(&value, sizeof value); }
    void WriteDWord(ULONG value) override { Write(&value, sizeof value); }
    void WriteDouble(double value) override { Write(&value, sizeof value); }
    void WriteStringW(const KTWCHAR* text) override;
    void WriteString(const char* text) override;

protected:
    // Where a line's terminator goes: behind the line feed unless that would
    // leave no room (a stream over storage), or always behind the last unit
    // read (a memory stream).
    enum class LineEnd { kFitted, kBehindLast };

    explicit CTypedStream(LineEnd lineEnd = LineEnd::kFitted) : lineEnd(lineEnd) {}

    // A partial value is no error here: only a read of nothing throws.
    template <class T>
    T ReadValue() {
        T value{};
        if (Read(&value, sizeof value) == 0)
            throw CXEofException();
        return value;
    }

private:
    template <class Unit>
    int ReadLineOf(Unit* buffer, int maxChars);

    LineEnd lineEnd;
};

}  // namespace kt
