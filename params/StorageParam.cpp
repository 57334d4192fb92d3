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
// what lies behind it, null when nothing does. The path has no empty step.
struct FirstStep {
    explicit FirstStep(const char* path) {
        const char* cut = std::strchr(path, '\\');
        name.assign(path, cut != nullptr ? static_cast<size_t>(cut - path) : std::strlen(path));
        rest = cut != nullptr ? cut + 1 : nullptr;
    }
    std::string name;
    const char* rest;
};

// Whether a section path has a step without a name: it is empty, or has a
// `\` at either end or two in a row. The storage would make an element of
// the empty name, which no enumeration lists.
bool HasEmptyStep(const char* path) {
    if (path == nullptr || *path == 0)
        return true;
    return path[0] == '\\' || path[std::strlen(path) - 1] == '\\' ||
           std::strstr(path, "\\\\") != nullptr;
}

// Values and sections are elements of one storage, and making either kind
// replaces an element of its name: these ask first.
bool HoldsStream(IXStorage* storage, const char* name) {
    return static_cast<bool>(Held<IXStream>(storage->OpenStream(name)));
}
// Only a clear "not found" rules a sub-storage out: one that another object
// holds open cannot be opened, but is there.
bool MayHoldStorage(IXStorage* storage, const char* name) {
    try {
        const Held<IXStorage> opened(storage->OpenStorage(name));
        return true;
    } catch (const CXException& failure) {
        return failure.code != XE_FILE_NOT_FOUND;
    }
}

// Removes from `storage` each element that `names` lists, taking over the
// enumerator's reference.
void DestroyEach(IXStorage* storage, CTEnum<const char*>* names,
                 int (IXStorage::*destroy)(const char*)) {
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

int CIXStorParam::QueryInterface(const type_info& type, void** out) {
    return registered.Answer(type, out);
}

int CIXStorParam::RegisterInterface(IKTUnknown* object, const type_info& type, int addRef) {
    return registered.Register(object, type, addRef);
}

template <class Next>
IParam* CIXStorParam::Below(IXStorage* childStorage, const char* childName, const char* rest,
                            Next next) {
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
    if (HasEmptyStep(path))
        return nullptr;
    return Guarded<IParam*>(nullptr, [&] {
        const FirstStep step(path);
        return Below(storage->CreateStorage(step.name.c_str()), step.name.c_str(), step.rest,
                     [](IParam* below, const char* rest) { return below->CreateSection(rest); });
    });
}

IParam* CIXStorParam::GetSection(const char* path, int create) {
    if (HasEmptyStep(path))
        return nullptr;
    return Guarded<IParam*>(nullptr, [&]() -> IParam* {
        const FirstStep step(path);
        IXStorage* found = nullptr;
        try {
            found = storage->OpenStorage(step.name.c_str());
        } catch (const CXException& failure) {
            // Only a missing section is made: one that is there but cannot be
            // opened (another object holds it) would be replaced, content and all.
            if (create == 0 || failure.code != XE_FILE_NOT_FOUND ||
                HoldsStream(storage, step.name.c_str()))
                return nullptr;
            found = storage->CreateStorage(step.name.c_str());
        }
        return Below(
            found, step.name.c_str(), step.rest,
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
        if (!stream && !MayHoldStorage(storage, valueName))
            stream.Reset(storage->CreateStream(valueName));
        if (stream)
            stream->WriteVariant(value);
    });
}

// The name is the stream's own: neither split nor replaced when empty. A
// section of the name stays.
void CIXStorParam::DeleteValue(const char* valueName) {
    Guarded([&] {
        const char* streamName = valueName != nullptr ? valueName : "";
        if (HoldsStream(storage, streamName))
            storage->DestroyStream(streamName);
    });
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
// is only emptied, even when its storage lies in another: what is there
// under its name is none of the tree's.
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
            if (parent != nullptr)
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
