// Document storages: a storage and its streams wrapped so that every stream
// operation of a document also asks the host's progress sink whether to go
// on. Code that saves a document works on what looks like a plain storage,
// and a cancel arrives as CXException XE_CANCELLED from whichever stream call
// came next. Nothing is undone: a host that wants the old document back
// reverts its transacted storage.
#pragma once

#include "kticore/core/Progress.h"
#include "kticore/params/Param.h"
#include "kticore/storage/Storage.h"

// The way back from a document stream to what lies under it. Its counting
// and QueryInterface are the stream's. The getters add a reference for the
// caller and throw XE_BAD_ARGUMENT for a null `out`.
struct IDocStrorageInfo : IKTUnknown {
    // The plain storage under the document storage of the stream.
    virtual int GetBaseStorage(IXStorage** out) = 0;
    virtual int SetBaseStorage() = 0;  // does nothing, 0
    // The document storage that the stream asks the sink through: the top
    // one of the document, or the one named to new_CIXDocStream.
    virtual int GetDocStorage(IXStorage** out) = 0;
    virtual int SetDocStorage() = 0;  // does nothing, 0
    // The plain stream under this one.
    virtual int GetBaseStream(IXStream** out) = 0;
    virtual int SetBaseStream() = 0;  // does nothing, 0
    // The flags given when the document storage was made.
    virtual int GetFlags() = 0;

protected:
    ~IDocStrorageInfo() = default;
};

// A top document storage over `storage`, asking `progress`; both get a
// reference. Calls SetRange(0, 100) on the sink, once for the document: its
// sub-storages do not. `flags` are the host's own, handed on to every child.
// Returns 1 with one reference in *out. A null storage or sink throws
// CXIFaceException, a null `out` XE_BAD_ARGUMENT.
//
// Its streams check the sink after Read, Write, Seek and every typed read
// (the call has happened when the cancel comes), and before every typed
// write (the write has not happened). GetPosition, GetLength and GetName do
// not check. A cancelled object is not spoiled: the next call asks again.
// A query for KTIFC::IProgress is answered by the sink; a stream answers
// for IXStorage with its document storage, for IDocStrorageInfo,
// IRegisterIface, and what was registered on it.
KTCORE_API int new_CIXDocStorage(IXStorage* storage, KTIFC::IProgress* progress, IXStorage** out,
                                 int flags);
// A document stream over `stream` (which gets a reference) that asks the sink
// of `docStorage`, which must be a document storage: another storage throws
// CXIFaceException, as does a null stream; a null `out` XE_BAD_ARGUMENT.
KTCORE_API int new_CIXDocStream(IXStorage* docStorage, IXStream* stream, IXStream** out, int flags);
