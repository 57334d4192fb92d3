#include "translation/ResourceRecords.h"

#include <cstring>
#include <new>
#include <string>

#include "kticore/strings/XString.h"
#include "platform/CriticalSection.h"
#include "platform/GuardedCopy.h"
#include "platform/Resources.h"
#include "translation/Lookup.h"
#include "translation/Rewriting.h"

namespace kt {
namespace {

// Every record of the process, in the order they were made. Records are
// freed at unload; the blocks they served are not. Threads of a host find
// and load resources at once: the list, and a record's first serving, are
// touched under the lock. Nothing that may wait for the system's loader lock
// is called under it: reading a module's file name or loading its resources
// takes that lock, a module's DllMain holds it when it finds a resource, and
// the two locks must never be waited for in opposite orders.
class CResourceRecords {
public:
    CResourceRecords() = default;
    CResourceRecords(const CResourceRecords&) = delete;
    CResourceRecords& operator=(const CResourceRecords&) = delete;
    ~CResourceRecords() {
        while (list.first != nullptr) {
            KT_LISTITEM* record = list.first;
            list.Remove(record);
            sys::FreeLocalBlock(record);
        }
    }

    SuppResource* Find(HMODULE module, HRSRC real) {
        sys::ScopedLock hold(lock);
        return FindHeld(module, real);
    }

    // `made`, or the record that another thread made for the same resource
    // meanwhile, in which case `made` is freed.
    SuppResource* Add(SuppResource* made) {
        sys::ScopedLock hold(lock);
        if (SuppResource* known = FindHeld(made->module, made->real)) {
            sys::FreeLocalBlock(made);
            return known;
        }
        list.AddTail(made);
        return made;
    }

    // Records of `module` are found no more.
    void Forget(HMODULE module) {
        sys::ScopedLock hold(lock);
        for (KT_LISTITEM* item = list.first; item != nullptr; item = list.Next(item)) {
            auto* record = static_cast<SuppResource*>(item);
            if (record->module == module)
                record->module = kForgottenModule;
        }
    }

    sys::CriticalSection lock;

private:
    // No module has this handle: FindResource of the program's own resources
    // is asked with a null one.
    inline static const HMODULE kForgottenModule = reinterpret_cast<HMODULE>(~std::uintptr_t{0});

    SuppResource* FindHeld(HMODULE module, HRSRC real) const {
        for (KT_LISTITEM* item = list.first; item != nullptr; item = list.Next(item)) {
            auto* record = static_cast<SuppResource*>(item);
            if (record->module == module && record->real == real)
                return record;
        }
        return nullptr;
    }

    COList list;
};

CResourceRecords records;

}  // namespace

bool IsResourceRecord(const void* handle) {
    DWORD marker = 0;
    return handle != nullptr &&
           sys::LoadGuarded(&static_cast<const SuppResource*>(handle)->marker, marker) &&
           marker == kResourceRecordMarker;
}

namespace {

bool IsNumber(const void* name) { return reinterpret_cast<std::uintptr_t>(name) >> 16 == 0; }

unsigned KindOf(std::uintptr_t type) {
    return type == kResourceTypeDialog ? kSuppKindDialog : type == kResourceTypeMenu ? kSuppKindMenu : kSuppKindString;
}

// The key of the record's resource; a key that would not fit the record is
// left out, since a cut key would match another resource's texts.
void MakeKey(SuppResource& record, const char* name) {
    std::string key(kKeyPrefixRoom + (IsNumber(name) ? 0 : std::strlen(name)) + 1, '\0');
    Supp_MakeKeyA(record.module, name, key.data(), KindOf(record.type));
    if (std::strlen(key.c_str()) >= kResourceKeyCapacity)
        return;
    std::strcpy(record.key, key.c_str());
    record.keyHash = Supp_HashKey(record.key);
}

// A record of its own for `real`, with its key; null when no block can be
// had.
SuppResource* NewRecord(HRSRC real, HMODULE module, std::uintptr_t kind, const char* name) {
    void* block = sys::AllocLocalBlock(sizeof(SuppResource));
    if (block == nullptr)
        return nullptr;
    auto* record = new (block) SuppResource();
    record->marker = kResourceRecordMarker;
    record->type = kind;
    record->module = module;
    record->real = real;
    if (name != nullptr)
        MakeKey(*record, name);
    return record;
}

// The dialog with its layout and translation. With an empty dictionary, or a
// malformed template, that is the template itself, at its own size.
void* ServeDialog(SuppResource& record) {
    const void* tmpl = sys::LockResourceBlock(record.realData);
    unsigned size = 0;
    void* served = LayoutDialogTemplate(tmpl, record.size, record.keyHash, &size, record.key);
    if (size != 0)
        record.size = size;
    if (served == nullptr)
        return record.realData;
    record.translated = served;
    return served;
}

// The block with its strings translated; the real one where no string has
// text.
void* ServeStrings(SuppResource& record) {
    DWORD size = 0;
    void* served = RewriteStringBlock(sys::LockResourceBlock(record.realData), record.size, record.key, &size);
    if (served == nullptr)
        return record.realData;
    record.size = size;
    record.translated = served;
    return served;
}

}  // namespace
}  // namespace kt

SuppResource* Supp_WrapResource(HRSRC real, HMODULE module, const char* name, const void* type) {
    using namespace kt;
    const auto kind = reinterpret_cast<std::uintptr_t>(type);
    if (real == nullptr)
        return nullptr;
    if (kind != kResourceTypeMenu && kind != kResourceTypeDialog && kind != kResourceTypeString)
        return reinterpret_cast<SuppResource*>(real);
    if (SuppResource* known = records.Find(module, real))
        return known;
    SuppResource* made = NewRecord(real, module, kind, name);
    if (made == nullptr)
        return reinterpret_cast<SuppResource*>(real);
    return records.Add(made);
}

// The key holds the name in narrow form either way.
SuppResource* Supp_WrapResource(HRSRC real, HMODULE module, const KTWCHAR* name, const void* type) {
    if (name == nullptr || kt::IsNumber(name))
        return Supp_WrapResource(real, module, reinterpret_cast<const char*>(name), type);
    const CXString narrow(name);
    return Supp_WrapResource(real, module, static_cast<const char*>(narrow), type);
}

void* Supp_LoadResource(HMODULE module, SuppResource* record) {
    using namespace kt;
    if (!IsResourceRecord(record))
        return sys::LoadResourceBlock(module, reinterpret_cast<HRSRC>(record));
    {
        sys::ScopedLock hold(records.lock);
        if (record->translated != nullptr)
            return record->translated;
    }
    HGLOBAL realData = sys::LoadResourceBlock(module, record->real);
    const DWORD size = sys::ResourceBlockSize(module, record->real);
    if (realData == nullptr)
        return nullptr;
    sys::ScopedLock hold(records.lock);
    if (record->translated != nullptr)  // served by another thread meanwhile
        return record->translated;
    record->realData = realData;
    record->size = size;
    switch (record->type) {
    case kResourceTypeDialog:
        return ServeDialog(*record);
    case kResourceTypeString:
        return ServeStrings(*record);
    default:
        // Menus are translated when they are loaded as menus; a menu's
        // template is served as it stands.
        return record->realData;
    }
}

DWORD kt::ServedResourceSize(HMODULE module, SuppResource* record) {
    Supp_LoadResource(module, record);
    sys::ScopedLock hold(records.lock);
    return record->size;
}

void kt::ForgetModuleResources(HMODULE module) { records.Forget(module); }
