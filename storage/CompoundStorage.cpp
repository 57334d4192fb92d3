#include "kticore/storage/CompoundStorage.h"

#include <cstring>
#include <memory>

#include "kticore/core/Exception.h"
#include "kticore/core/ListEnum.h"
#include "platform/OleStorage.h"
#include "platform/TextConversion.h"
#include "storage/StorageModes.h"
#include "storage/SummaryInfo.h"
#include "streams/OleStream.h"

namespace {

// Element names of a compound file hold 31 units, and the platform refuses
// longer ones. A name beyond this buffer reaches it cut to the buffer's
// length (Wine's conversion fills the buffer before it fails), and is
// refused as well.
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
std::unique_ptr<char[]> NarrowCopy(const KTWCHAR* name) {
    char narrow[kNameUnits] = {};
    kt::sys::WideToMultiByte(kt::sys::kAnsiCodePage, name, static_cast<int>(std::wcslen(name)),
                             narrow, kNameUnits - 1);
    std::unique_ptr<char[]> copy(new char[std::strlen(narrow) + 1]);
    std::strcpy(copy.get(), narrow);
    return copy;
}

// Owners for the references and memory that an enumeration holds.
struct ReleaseOle {
    void operator()(IUnknown* object) const { object->Release(); }
};
struct ReleaseOwn {
    void operator()(IKTUnknown* object) const { object->Release(); }
};
struct FreeTaskMemory {
    void operator()(KTWCHAR* memory) const { kt::sys::FreeTaskMemory(memory); }
};

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
    Commit();
    storage->Release();
    if (parent != nullptr)
        parent->Release();
}

// IXStorage itself, or a new view of the document properties on each query.
// Nothing else, IKTUnknown included.
int CStorage::QueryInterface(const type_info& wanted, void** out) {
    if (wanted == typeid(IKTProperty)) {
        if (out != nullptr)
            *out = static_cast<IKTProperty*>(new CIKTSummaryInfo(storage));
        return 1;
    }
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
// the enumerator keeps nothing of the storage. Whatever throws on the way
// leaves nothing held.
CTEnum<const char*>* CStorage::EnumElements(DWORD wantedType) {
    IEnumSTATSTG* opened = nullptr;
    const HRESULT status = storage->EnumElements(0, nullptr, 0, &opened);
    if (FAILED(status))
        throw CXException(XErrorFromHResult(static_cast<DWORD>(status)));
    const std::unique_ptr<IEnumSTATSTG, ReleaseOle> elements(opened);
    const std::unique_ptr<CTListEnum<char*, const char*>, ReleaseOwn> names(
        new CTListEnum<char*, const char*>);
    STATSTG element;
    while (elements->Next(1, &element, nullptr) == S_OK) {
        const std::unique_ptr<KTWCHAR, FreeTaskMemory> name(element.pwcsName);
        if (element.type != wantedType)
            continue;
        std::unique_ptr<char[]> copy = NarrowCopy(name.get());
        names->AddTail(copy.get());
        copy.release();  // the list's now
    }
    return names->GetEnum();
}

CTEnum<const char*>* CStorage::EnumStorages() { return EnumElements(STGTY_STORAGE); }

CTEnum<const char*>* CStorage::EnumStreams() { return EnumElements(STGTY_STREAM); }

// A sub-storage whose element the parent destroyed while it was open is
// reverted for good; Wine 8 crashes committing such a direct one, so it is
// asked first.
int CStorage::Commit() {
    if (flags == XSTG_READONLY)
        return S_OK;
    STATSTG stat;
    if (storage->Stat(&stat, STATFLAG_NONAME) == STG_E_REVERTED)
        return STG_E_REVERTED;
    return storage->Commit(STGC_DEFAULT);
}

void CStorage::Revert() {
    if (flags & XSTG_TRANSACTED)
        storage->Revert();
}
