// The stored form of an object: its class name with the terminator, a 32-bit
// length, and what the object's Save wrote. The length is measured around
// Save, so objects may nest.
#include <cstring>

#include "kticore/objects/Persist.h"
#include "kticore/objects/Registry.h"
#include "objects/Proxy.h"

namespace {

// A class name with its terminator is read as a line of at most this many
// bytes: a name is 1 to 259 characters.
constexpr int kClassNameLimit = 260;

// Hands the reference of `object` to `*out` as IKTUnknown.
int HandOver(IPersistXStream* object, IKTUnknown** out) {
    const int found = object->QueryInterface(typeid(IKTUnknown), reinterpret_cast<void**>(out));
    object->Release();
    return found;
}

}  // namespace

int WriteObjectToXStream(IXStream* stream, IPersistXStream* object) {
    if (object == nullptr) {
        stream->WriteString("");
        return 1;
    }
    stream->WriteString(object->GetClassName());
    stream->WriteDWord(0);
    const unsigned start = stream->Seek(0, 1);
    object->Save(stream);
    const unsigned end = stream->Seek(0, 1);
    stream->Seek(static_cast<LONG>(start - 4), 0);
    stream->WriteDWord(end - start);
    stream->Seek(static_cast<LONG>(end), 0);
    return 1;
}

int ReadObjectFromXStream(IXStream* stream, IKTUnknown** object) {
    *object = nullptr;
    // Room for the terminator that a memory stream puts behind a full line;
    // an OLE stream puts none there, so the room starts as zeros.
    char name[kClassNameLimit + 2] = {};
    if (stream->ReadLine(name, kClassNameLimit) == 0 || name[0] == 0)
        return 0;
    const ULONG size = stream->ReadDWord();

    IKTUnknown* created = nullptr;
    IPersistXStream* persist = nullptr;
    if (CreateObject(name, nullptr, typeid(IPersistXStream), &created) && created != nullptr) {
        persist = static_cast<IPersistXStream*>(created);
    } else {
        if (created != nullptr)  // a factory that refused but made something
            created->Release();
        persist = new kt::CXProxy(name, size);
    }
    try {
        persist->Load(stream);
    } catch (...) {
        persist->Release();
        throw;
    }
    return HandOver(persist, object);
}

unsigned long SkipObjectToXStream(IXStream* stream) {
    const unsigned start = stream->Seek(0, 1);
    char name[kClassNameLimit + 2] = {};
    stream->ReadLine(name, kClassNameLimit);
    if (name[0] != 0) {
        // A seek moves by a signed 32-bit offset: a length above 2 GiB is
        // stepped over in two moves rather than taken as a step back.
        ULONG size = stream->ReadDWord();
        for (const ULONG kMaxStep = 0x7FFFFFFF; size != 0;) {
            const ULONG step = size < kMaxStep ? size : kMaxStep;
            stream->Seek(static_cast<LONG>(step), 1);
            size -= step;
        }
    }
    return start;
}

unsigned long SizeOfObject(IPersistXStream* object) {
    if (object == nullptr)
        return 1;
    return std::strlen(object->GetClassName()) + object->GetSize() + 5;
}
