#include "params/StorageParam.h"

#include <cstring>
#include <string>

#include "params/BackEndRules.h"
#include "params/Held.h"
#include "params/ValuePath.h"

namespace kt::params {
namespace {

const BackEndRules& kRules = kStorage;

constexpr char kRootName[] = "Root";

// A section path cut at its first `\`: the name of the section below, and
// what lies behind it, null when nothing does.
struct FirstStep {
    explicit FirstStep(const char* path) {
        if (path == nullptr)
            path = "";
        const char* cut = std::strchr(path, '\\');
        name.assign(path, cut != nullptr ? static_cast<size_t>(cut - path) : std::strlen(path));
        rest = cut != nullptr ? cut + 1 : nullptr;
    }
    std::string name;
    const char* rest;
};

// Removes from `storage` each element that `names` lists, taking over the
// enumerator's reference.
void DestroyEach(IXStorage* storage, CTEnum<const char*>* names, int (IXStorage::*destroy)(const char*)) {
    const Held<CTEnum<const char*>> held(names);
    const char* each = nullptr;
    while (names->Next(1, &each, nullptr))
        (storage->*destroy)(each);
}

}  // namespace

CIXStorParam::CIXStorParam(IXStorage* storage, IParam* parent, const char* name)
    : name(name), storage(storage) {
    storage->AddRef();
    registered.Register(storage, typeid(IXStorage), 0);
    registered.Register(static_cast<IRegisterIface*>(this), typeid(IRegisterIface), 0);
    SetParent(parent);
}

CIXStorParam::~CIXStorParam() {
    Guarded([&] {
        storage->Commit();
        Held<IXStorage> parentStorage(storage->GetParent());
        if (parentStorage)
            parentStorage->Commit();
    });
    if (storage != nullptr)
        storage->Release();
}

ULONG CIXStorParam::Release() {
    if (ownRefs == 1)
        Guarded([&] { storage->Commit(); });
    return CKTUnknownImplParent::Release();
}

int CIXStorParam::QueryInterface(const type_info& type, void** out) { return registered.Answer(type, out); }

int CIXStorParam::RegisterInterface(IKTUnknown* object, const type_info& type, int addRef) {
    return registered.Register(object, type, addRef);
}

template <class Next>
IParam* CIXStorParam::Below(IXStorage* childStorage, const char* childName, const char* rest, Next next) {
    const Held<IXStorage> held(childStorage);
    IParam* below = new CIXStorParam(childStorage, this, childName);
    if (rest == nullptr)
        return below;
    const Held<IParam> passed(below);
    return next(below, rest);
}

// An element of the name is replaced, with all that was below it, even when
// the path goes on below it.
IParam* CIXStorParam::CreateSection(const char* path) {
    return Guarded<IParam*>(nullptr, [&] {
        const FirstStep step(path);
        return Below(storage->CreateStorage(step.name.c_str()), step.name.c_str(), step.rest,
                     [](IParam* below, const char* rest) { return below->CreateSection(rest); });
    });
}

IParam* CIXStorParam::GetSection(const char* path, int create) {
    return Guarded<IParam*>(nullptr, [&]() -> IParam* {
        const FirstStep step(path);
        IXStorage* found = nullptr;
        try {
            found = storage->OpenStorage(step.name.c_str());
        } catch (const CXException&) {
            if (create == 0)
                return nullptr;
            found = storage->CreateStorage(step.name.c_str());
        }
        return Below(found, step.name.c_str(), step.rest,
                     [create](IParam* below, const char* rest) { return below->GetSection(rest, create); });
    });
}

// The section removes itself from its parent as it ends.
void CIXStorParam::DeleteSection(const char* path) {
    Held<IParam> section(GetSection(path, 0));
    if (section)
        section->Clear();
}

void CIXStorParam::DeleteAllSections() {
    Held<CTEnum<const char*>> names(EnumSections());
    const char* each = nullptr;
    while (names && names->Next(1, &each, nullptr))
        DeleteSection(each);
}

CTEnum<const char*>* CIXStorParam::EnumSections() {
    return Guarded<CTEnum<const char*>*>(nullptr, [&] { return storage->EnumStorages(); });
}

// A stream whose bytes are no stored value reads as a missing value: the
// caller's variant is left cleared, never with a kind the stream made up.
int CIXStorParam::GetValue(const char* path, tagKTVARIANT* value) {
    const ValuePath split(path);
    if (split.HasSection()) {
        if (!split.Fits())
            return 0;
        Held<IParam> section(GetSection(split.Section(), 0));
        return section ? section->GetValue(split.Name(), value) : 0;
    }
    return Guarded(0, [&] {
        Held<IXStream> stream(storage->OpenStream(ValueName(kRules, path)));
        KTVariantClear(value);
        if (!stream)
            return 0;
        try {
            return stream->ReadVariant(value);
        } catch (const CXException&) {
            KTVariantClear(value);
            throw;
        }
    });
}

// The stream there is written over from its start: a shorter value leaves
// bytes behind its end that no read reaches. A null value is stored empty.
void CIXStorParam::SetValue(const char* path, const tagKTVARIANT* value) {
    const CKTVariant empty;
    if (value == nullptr)
        value = &empty;
    if (!Stores(kRules, value->vt))
        return;
    const ValuePath split(path);
    if (split.HasSection()) {
        if (!split.Fits())
            throw CXException(XE_BAD_ARGUMENT);
        Held<IParam> section(GetSection(split.Section(), 1));
        if (section)
            section->SetValue(split.Name(), value);
        return;
    }
    Guarded([&] {
        const char* valueName = ValueName(kRules, path);
        Held<IXStream> stream(storage->OpenStream(valueName));
        if (!stream)
            stream.Reset(storage->CreateStream(valueName));
        if (stream)
            stream->WriteVariant(value);
    });
}

// The name is the stream's own: neither split nor replaced when empty.
void CIXStorParam::DeleteValue(const char* valueName) {
    Guarded([&] { storage->DestroyStream(valueName != nullptr ? valueName : ""); });
}

void CIXStorParam::DeleteAllValues() {
    Held<CTEnum<const char*>> names(EnumValues());
    const char* each = nullptr;
    while (names && names->Next(1, &each, nullptr))
        DeleteValue(each);
}

CTEnum<const char*>* CIXStorParam::EnumValues() {
    return Guarded<CTEnum<const char*>*>(nullptr, [&] { return storage->EnumStreams(); });
}

// The content goes first and is committed, then the storage is let go of
// before its parent destroys it: an element still open could not go. A root
// has no parent storage and is only emptied.
void CIXStorParam::Clear() {
    Guarded([&] {
        DestroyEach(storage, storage->EnumStorages(), &IXStorage::DestroyStorage);
        DestroyEach(storage, storage->EnumStreams(), &IXStorage::DestroyStream);
        storage->Commit();
        Held<IXStorage> parentStorage(storage->GetParent());
        registered.Register(nullptr, typeid(IXStorage), 0);
        storage->Release();
        storage = nullptr;
        if (parentStorage) {
            parentStorage->DestroyStorage(name);
            parentStorage->Commit();
        }
    });
}

}  // namespace kt::params

IParam* new_IXStorParam(IXStorage* storage) {
    if (storage == nullptr)
        throw CXException(XE_BAD_ARGUMENT);
    return new kt::params::CIXStorParam(storage, nullptr, kt::params::kRootName);
}
