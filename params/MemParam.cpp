#include "params/MemParam.h"

#include <cstring>
#include <string>

#include "kticore/core/Exception.h"
#include "params/BackEndRules.h"
#include "params/NameCompare.h"
#include "params/ValuePath.h"

namespace kt::params {
namespace {

const BackEndRules& kRules = kMemoryTree;

// Sections whose last reference went while another section was being
// destroyed, waiting their turn on this thread.
thread_local CMemParam* pendingDestruction = nullptr;
thread_local bool destroying = false;

}  // namespace

void CMemParam::NameList::Append(const char* name) {
    const size_t size = std::strlen(name) + 1;
    char* copy = static_cast<char*>(std::memcpy(new char[size], name, size));
    if (AddTail(static_cast<const char*>(copy)) == nullptr)
        delete[] copy;
}

std::unique_ptr<const char[]> CMemParam::NameList::Take(const char* name) {
    for (auto* node = First(); node != nullptr; node = Next(node)) {
        if (CompareNoCase(node->value, name) != 0)
            continue;
        Remove(node);
        std::unique_ptr<const char[]> taken(node->value);
        delete node;
        return taken;
    }
    return nullptr;
}

void CMemParam::NameList::Empty() {
    RemoveAll();
    closing = 0;
}

CMemParam::CMemParam() {
    registered.Register(static_cast<IRegisterIface*>(this), typeid(IRegisterIface), 0);
}

CMemParam::~CMemParam() = default;

int CMemParam::QueryInterface(const type_info& type, void** out) { return registered.Answer(type, out); }

// The last reference to a section destroys it, and with it every sub-section
// that nobody else holds. Those are queued instead of destroyed from within
// their parent's destructor, so a tree of any depth goes with a flat stack.
ULONG CMemParam::InternalRelease() {
    if (--refs != 0)
        return refs;
    nextToDestroy = pendingDestruction;
    pendingDestruction = this;
    if (destroying)
        return 0;
    destroying = true;
    while (pendingDestruction != nullptr) {
        CMemParam* next = pendingDestruction;
        pendingDestruction = next->nextToDestroy;
        delete next;
    }
    destroying = false;
    return 0;
}

int CMemParam::RegisterInterface(IKTUnknown* object, const type_info& type, int addRef) {
    return registered.Register(object, type, addRef);
}

IParam* CMemParam::AddChild(const char* name) {
    CMemParam* child = new CMemParam;
    sectionNames.Append(name);
    sections.Set(name, child);
    child->Release();
    return child;
}

IParam* CMemParam::CreateSection(const char* path) {
    CMemParam* at = this;
    for (const char* cut; (cut = std::strchr(path, '\\')) != nullptr; path = cut + 1) {
        const std::string first(path, cut);
        IParam* child = at->Child(first.c_str());
        at = static_cast<CMemParam*>(child != nullptr ? child : at->AddChild(first.c_str()));
    }
    IParam* section = at->Child(path);
    if (section != nullptr) {
        section->AddRef();
        section->Clear();
        return section;
    }
    section = at->AddChild(path);
    section->AddRef();
    return section;
}

IParam* CMemParam::GetSection(const char* path, int create) {
    CMemParam* at = this;
    for (const char* cut; (cut = std::strchr(path, '\\')) != nullptr; path = cut + 1) {
        IParam* child = at->Child(std::string(path, cut).c_str());
        if (child == nullptr)
            return create != 0 ? at->CreateSection(path) : nullptr;
        at = static_cast<CMemParam*>(child);
    }
    IParam* section = at->Child(path);
    if (section == nullptr)
        return create != 0 ? at->CreateSection(path) : nullptr;
    section->AddRef();
    return section;
}

// A path through a `\` only empties its section; a name of this section
// takes it out as well. `path` may be the list's own copy of the name (an
// enumerator hands those out): it stays alive until the map is done with it.
void CMemParam::DeleteSection(const char* path) {
    IParam* section = GetSection(path, 0);
    if (section != nullptr) {
        section->Clear();
        section->Release();
    }
    if (const auto taken = sectionNames.Take(path))
        sections.Remove(path);
}

void CMemParam::DeleteAllSections() {
    for (auto* node = sectionNames.First(); node != nullptr; node = sectionNames.Next(node)) {
        IParam* section = Child(node->value);
        if (section != nullptr)
            section->Clear();
    }
    sectionNames.Empty();
    sections.Empty();
}

CTEnum<const char*>* CMemParam::EnumSections() {
    return sectionNames.closing ? nullptr : sectionNames.GetEnum();
}

int CMemParam::GetValue(const char* path, tagKTVARIANT* value) {
    const ValuePath split(path);
    if (kRules.valuePathSplits && split.HasSection()) {
        if (!split.Fits())
            return 0;
        IParam* section = GetSection(split.Section(), 0);
        if (section == nullptr)
            return 0;
        const int found = section->GetValue(split.Name(), value);
        section->Release();
        return found;
    }
    const CKTVariant* stored = values.Find(ValueName(kRules, path));
    if (stored == nullptr)
        return 0;
    KTVariantCopy(value, stored);
    return 1;
}

void CMemParam::SetValue(const char* path, const tagKTVARIANT* value) {
    if (value != nullptr && !Stores(kRules, value->vt))
        return;
    const ValuePath split(path);
    if (kRules.valuePathSplits && split.HasSection()) {
        if (!split.Fits())
            throw CXException(XE_BAD_ARGUMENT);
        IParam* section = GetSection(split.Section(), 1);
        section->SetValue(split.Name(), value);
        section->Release();
        return;
    }
    const char* name = ValueName(kRules, path);
    if (values.Find(name) == nullptr)
        valueNames.Append(name);
    // The entry takes the new spelling of the name, then one copy of the value.
    values.Set(name, CKTVariant());
    CKTVariant& stored = *values.Find(name);
    if (value != nullptr)
        stored = value;
}

void CMemParam::DeleteValue(const char* name) {
    name = ValueName(kRules, name);
    if (values.Remove(name))
        valueNames.Take(name);
}

void CMemParam::DeleteAllValues() {
    valueNames.Empty();
    values.Empty();
}

CTEnum<const char*>* CMemParam::EnumValues() {
    return valueNames.closing ? nullptr : valueNames.GetEnum();
}

// Sub-sections are not emptied: each only loses the reference of this map.
void CMemParam::Clear() {
    sectionNames.Empty();
    valueNames.Empty();
    sections.Empty();
    values.Empty();
}

}  // namespace kt::params

IParam* new_MemParam() { return new kt::params::CMemParam; }
