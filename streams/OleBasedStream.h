// COLEBasedXStream: an IXStream over an OLE stream that a host holds, the
// forgiving twin of CStream. It throws nothing of what the OLE stream
// reports: a Read answers only whether all of it came, typed reads give what
// arrived, and it knows no position, length or name. Wide text does not
// survive it: a stored wide text is written as its kind alone and refused
// when read.
#pragma once

#include "kticore/streams/Stream.h"
#include "platform/OleStream.h"

namespace kt {

class COLEBasedXStream final : public CKTUnknownImpl<IXStream> {
public:
    // Takes a reference on `stream` and puts it at its start, also when the
    // host had moved it on.
    explicit COLEBasedXStream(IStream* stream);
    // Commits the OLE stream, whatever it answers, and releases it.
    ~COLEBasedXStream() override;

    // 1 when the OLE stream said S_OK and all `size` bytes came, else 0.
    unsigned Read(void* buffer, unsigned size) override;
    void Write(const void* buffer, unsigned size) override;
    // The origin goes to the OLE stream unchecked, and the offset as an
    // unsigned number: a negative one seeks far forward, not back.
    unsigned Seek(LONG offset, unsigned origin) override;
    unsigned GetPosition() override { return 0; }

    unsigned char ReadByte() override { return ReadValue<unsigned char>(); }
    unsigned short ReadWord() override { return ReadValue<unsigned short>(); }
    ULONG ReadDWord() override { return ReadValue<ULONG>(); }
    double ReadDouble() override { return ReadValue<double>(); }
    // Up to and with a 0 unit; a line feed ends nothing. The count with the
    // terminator, or maxChars when none came (then the text is open).
    int ReadLineW(KTWCHAR* buffer, int maxChars) override;
    int ReadLine(char* buffer, int maxChars) override;
    int ReadVariant(tagKTVARIANT* value) override;
    void WriteVariant(const tagKTVARIANT* value) override;

    void WriteByte(unsigned char value) override { Write(&value, sizeof value); }
    void WriteWord(unsigned short value) override { Write(&value, sizeof value); }
    void WriteDWord(ULONG value) override { Write(&value, sizeof value); }
    void WriteDouble(double value) override { Write(&value, sizeof value); }
    // A null text is written as its terminator alone.
    void WriteStringW(const KTWCHAR* text) override;
    void WriteString(const char* text) override;

    unsigned GetLength() override { return 0; }
    const char* GetName() override { return ""; }

    IStream* OleStream() const { return stream; }

private:
    // What arrived of the value, whatever the status; zeros where nothing did.
    template <class T>
    T ReadValue() {
        T value{};
        ULONG read = 0;
        stream->Read(&value, sizeof value, &read);
        return value;
    }

    template <class Unit>
    int ReadUntilZero(Unit* buffer, int maxChars);

    IStream* stream;
};

}  // namespace kt
