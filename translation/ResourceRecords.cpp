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
// and load resources at once: making a record, and serving its block the
// first time, happen under the lock.
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

    SuppResource* Find(HMODULE module, HRSRC real) const {
        for (KT_LISTITEM* item = list.first; item != nullptr; item = list.Next(item)) {
            auto* record = static_cast<SuppResource*>(item);
            if (record->module == module && record->real == real)
                return record;
        }
        return nullptr;
    }

    void Append(SuppResource* record) { list.AddTail(record); }

    sys::CriticalSection lock;

private:
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
    sys::ScopedLock hold(records.lock);
    if (SuppResource* known = records.Find(module, real))
        return known;
    void* block = sys::AllocLocalBlock(sizeof(SuppResource));
    if (block == nullptr)
        return reinterpret_cast<SuppResource*>(real);
    auto* record = new (block) SuppResource();
    record->marker = kResourceRecordMarker;
    record->type = kind;
    record->module = module;
    record->real = real;
    if (name != nullptr)
        MakeKey(*record, name);
    records.Append(record);
    return record;
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
    sys::ScopedLock hold(records.lock);
    if (record->translated != nullptr)
        return record->translated;
    record->realData = sys::LoadResourceBlock(module, record->real);
    record->size = sys::ResourceBlockSize(module, record->real);
    if (record->realData == nullptr)
        return nullptr;
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
    sys::ScopedLock hold(records.lock);
    if (record->realData == nullptr)
        Supp_LoadResource(module, record);
    return record->size;
}
