// CIXDocStream: a stream of a document. Each operation goes to the stream
// under it and asks the sink of its document storage whether to go on: reads,
// Write and Seek after the call, typed writes before it. Interfaces may be
// attached to it through IRegisterIface, and IDocStrorageInfo leads back to
// the objects under it.
#pragma once

#include "params/RegisteredInterfaces.h"
#include "storage/DocumentStorage.h"

namespace kt {

class CIXDocStream final : public CKTUnknownImpl<IXStream>,
                           public IDocStrorageInfo,
                           public IRegisterIface {
public:
    // Takes a reference on `stream` and on `docStorage`.
    CIXDocStream(IXStream* stream, CIXDocStorage* docStorage, int flags);
    // Empties the table of registered interfaces, then releases the document
    // storage and the stream under it.
    ~CIXDocStream() override;

    ULONG AddRef() override { return InternalAddRef(); }
    ULONG Release() override { return InternalRelease(); }
    int QueryInterface(const type_info& wanted, void** out) override;

    unsigned Read(void* buffer, unsigned size) override {
        return Checked(stream->Read(buffer, size));
    }
    void Write(const void* buffer, unsigned size) override;
    unsigned Seek(LONG offset, unsigned origin) override {
        return Checked(stream->Seek(offset, origin));
    }
    unsigned GetPosition() override { return stream->GetPosition(); }
    unsigned char ReadByte() override { return Checked(stream->ReadByte()); }
    unsigned short ReadWord() override { return Checked(stream->ReadWord()); }
    ULONG ReadDWord() override { return Checked(stream->ReadDWord()); }
    double ReadDouble() override { return Checked(stream->ReadDouble()); }
    int ReadLineW(KTWCHAR* buffer, int maxChars) override {
        return Checked(stream->ReadLineW(buffer, maxChars));
    }
    int ReadLine(char* buffer, int maxChars) override {
        return Checked(stream->ReadLine(buffer, maxChars));
    }
    int ReadVariant(tagKTVARIANT* value) override { return Checked(stream->ReadVariant(value)); }
    void WriteVariant(const tagKTVARIANT* value) override;
    void WriteByte(unsigned char value) override;
    void WriteWord(unsigned short value) override;
    void WriteDWord(ULONG value) override;
    void WriteDouble(double value) override;
    void WriteStringW(const KTWCHAR* text) override;
    void WriteString(const char* text) override;
    unsigned GetLength() override { return stream->GetLength(); }
    const char* GetName() override { return stream->GetName(); }

    int GetBaseStorage(IXStorage** out) override;
    int SetBaseStorage() override { return 0; }
    int GetDocStorage(IXStorage** out) override;
    int SetDocStorage() override { return 0; }
    int GetBaseStream(IXStream** out) override;
    int SetBaseStream() override { return 0; }
    int GetFlags() override { return flags; }

    int RegisterInterface(IKTUnknown* object, const type_info& type, int addRef) override;

private:
    // The result of a call that has happened, once the sink let it pass.
    template <class T>
    T Checked(T result) {
        docStorage->CheckCancelled();
        return result;
    }

    IXStream* stream;
    CIXDocStorage* docStorage;
    int flags;
    params::CRegisteredInterfaces registered;
};

}  // namespace kt
