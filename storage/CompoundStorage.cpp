#include "kticore/storage/CompoundStorage.h"

#include <cstring>

#include "kticore/core/Exception.h"
#include "kticore/core/ListEnum.h"
#include "platform/OleStorage.h"
#include "platform/TextConversion.h"
#include "storage/StorageModes.h"
#include "streams/OleStream.h"

namespace {

// Element names of a compound file hold 31 units; a name beyond this buffer
// goes to the platform as the empty one, for it to take or refuse.
constexpr int kNameUnits = 512;

// An element name widened in the ANSI code page, on the stack of the call.
class WideName {
public:
    explicit WideName(const char* name) {
        if (name != nullptr)
            kt::sys::MultiByteToWide(kt::sys::kAnsiCodePage, name,
                                     static_cast<int>(std::strlen(name)), units, kNameUnits);
    }
    operator const KTWCHAR*() const { return units; }

private:
    KTWCHAR units[kNameUnits + 1] = {};
};

// A name from the platform narrowed in the ANSI code page, as a private copy.
char* NarrowCopy(const KTWCHAR* name) {
    char narrow[kNameUnits] = {};
    kt::sys::WideToMultiByte(kt::sys::kAnsiCodePage, name, static_cast<int>(std::wcslen(name)),
                             narrow, kNameUnits - 1);
    char* copy = new char[std::strlen(narrow) + 1];
    std::strcpy(copy, narrow);
    return copy;
}

// The library's stream over a stream that OLE gave, which keeps its own
// reference.
IXStream* WrapStream(const char* name, IStream* stream) {
    IXStream* made = new kt::CStream(name, stream);
    stream->Release();
    return made;
}

[[noreturn]] void ThrowStatus(HRESULT status, const KTWCHAR* name, DWORD operation) {
    throw CXFileException(XErrorFromHResult(static_cast<DWORD>(status)), name, operation);
}

}  // namespace

CStorage::CStorage(const CXStringW& name, DWORD flags, IStorage* storage, CStorage* parent)
    : name(name), flags(flags), storage(storage), parent(parent) {
    storage->AddRef();
    if (parent != nullptr)
        parent->AddRef();
}

CStorage::~CStorage() {
    if (CommitsAtAll())
        storage->Commit(STGC_DEFAULT);
    storage->Release();
    if (parent != nullptr)
        parent->Release();
}

int CStorage::QueryInterface(const type_info& wanted, void** out) {
    IXStorage* found = wanted == typeid(IXStorage) ? this : nullptr;
    if (out == nullptr)
        return found != nullptr;
    *out = found;
    if (found == nullptr)
        return 0;
    AddRef();
    return 1;
}

IXStorage* CStorage::NewChild(IStorage* child) {
    auto* made = new CStorage(name, flags, child, this);
    child->Release();
    return made;
}

IXStorage* CStorage::CreateStorage(const char* elementName) {
    const CXStringW wide(elementName);
    IStorage* child = nullptr;
    const HRESULT status = storage->CreateStorage(wide, kt::CreateStorageMode(flags), 0, 0, &child);
    if (FAILED(status))
        ThrowStatus(status, wide, XFILEOP_OPEN);
    return NewChild(child);
}

IXStorage* CStorage::OpenStorage(const char* elementName) {
    const WideName wide(elementName);
    IStorage* child = nullptr;
    const HRESULT status =
        storage->OpenStorage(wide, nullptr, kt::OpenStorageMode(flags), nullptr, 0, &child);
    if (FAILED(status))
        ThrowStatus(status, wide, XFILEOP_OPEN);
    return NewChild(child);
}

int CStorage::DestroyElement(const char* elementName) {
    const HRESULT status = storage->DestroyElement(WideName(elementName));
    if (FAILED(status))
        ThrowStatus(status, nullptr, XFILEOP_DESTROY_ELEMENT);
    return status;
}

int CStorage::DestroyStorage(const char* elementName) { return DestroyElement(elementName); }

int CStorage::DestroyStream(const char* elementName) { return DestroyElement(elementName); }

IXStorage* CStorage::GetParent() {
    if (parent != nullptr)
        parent->AddRef();
    return parent;
}

IXStream* CStorage::CreateStream(const char* elementName) {
    IStream* stream = nullptr;
    if (FAILED(storage->CreateStream(WideName(elementName), kt::CreateStreamMode(flags), 0, 0,
                                     &stream)))
        return nullptr;
    return WrapStream(elementName, stream);
}

IXStream* CStorage::OpenStream(const char* elementName) {
    IStream* stream = nullptr;
    if (FAILED(storage->OpenStream(WideName(elementName), nullptr, kt::OpenStreamMode(flags), 0,
                                   &stream)))
        return nullptr;
    return WrapStream(elementName, stream);
}

// The names of the elements of one kind, copied out in the platform's order:
// the enumerator keeps nothing of the storage.
CTEnum<const char*>* CStorage::EnumElements(DWORD wantedType) {
    IEnumSTATSTG* elements = nullptr;
    const HRESULT status = storage->EnumElements(0, nullptr, 0, &elements);
    if (FAILED(status))
        throw CXException(XErrorFromHResult(static_cast<DWORD>(status)));
    auto* names = new CTListEnum<char*, const char*>;
    STATSTG element;
    while (elements->Next(1, &element, nullptr) == S_OK) {
        if (element.type == wantedType)
            names->AddTail(NarrowCopy(element.pwcsName));
        kt::sys::FreeTaskMemory(element.pwcsName);
    }
    elements->Release();
    CTEnum<const char*>* walk = names->GetEnum();
    names->Release();
    return walk;
}

CTEnum<const char*>* CStorage::EnumStorages() { return EnumElements(STGTY_STORAGE); }

CTEnum<const char*>* CStorage::EnumStreams() { return EnumElements(STGTY_STREAM); }

bool CStorage::CommitsAtAll() const { return flags != XSTG_READONLY; }

int CStorage::Commit() { return CommitsAtAll() ? storage->Commit(STGC_DEFAULT) : S_OK; }

void CStorage::Revert() {
    if (flags & XSTG_TRANSACTED)
        storage->Revert();
}
