#include "storage/SummaryInfo.h"

#include <memory>
#include <string>

#include "platform/TextConversion.h"

namespace {

// A code below 0x10000 is an id in the summary set; one with a high half is
// the id, shifted up by 16, in the document summary set.
constexpr int kDocumentSummaryShift = 16;

// The ids of the published sets (PIDSI_... and PIDDSI_...).
constexpr int kTitle = 2, kSubject = 3, kAuthor = 4, kKeywords = 5, kComments = 6,
              kLastAuthor = 8, kAppName = 18;
constexpr int kCategory = 2, kCompany = 15;

constexpr int DocumentSummaryCode(int id) { return id << kDocumentSummaryShift; }

struct KnownProperty {
    const char* name;
    int code;
};

constexpr KnownProperty kKnownProperties[] = {
    {"Title", kTitle},
    {"Subject", kSubject},
    {"Author", kAuthor},
    {"Keywords", kKeywords},
    {"Comments", kComments},
    {"Last Author", kLastAuthor},
    {"App name", kAppName},
    {"Category", DocumentSummaryCode(kCategory)},
    {"Company", DocumentSummaryCode(kCompany)},
};

constexpr DWORD kReadMode = STGM_SHARE_EXCLUSIVE | STGM_READ;
constexpr DWORD kWriteMode = STGM_SHARE_EXCLUSIVE | STGM_READWRITE;

struct ReleaseOle {
    void operator()(IUnknown* object) const { object->Release(); }
};
using PropertyStorageRef = std::unique_ptr<IPropertyStorage, ReleaseOle>;

// A value's text as the property set keeps it: narrow, in the ANSI code
// page, sized to what the narrowing needs. Empty when the value is no text
// or an empty one.
std::string NarrowText(const tagKTVARIANT& value) {
    if (value.vt == KTVT_STR && value.pszVal != nullptr)
        return value.pszVal;
    if (value.vt != KTVT_WSTR || value.pwszVal == nullptr)
        return {};
    const int units = static_cast<int>(std::char_traits<KTWCHAR>::length(value.pwszVal));
    const int size = kt::sys::WideToMultiByte(kt::sys::kAnsiCodePage, value.pwszVal, units,
                                              nullptr, 0);
    std::string text(static_cast<size_t>(size), '\0');
    if (size != 0)
        kt::sys::WideToMultiByte(kt::sys::kAnsiCodePage, value.pwszVal, units, text.data(), size);
    return text;
}

}  // namespace

CIKTSummaryInfo::CIKTSummaryInfo(IStorage* storage)
    : propertySets(kt::sys::PropertySetsOf(storage)), names(new NameTable) {
    if (propertySets == nullptr)
        return;
    for (const KnownProperty& known : kKnownProperties)
        names->Set(known.name, known.code);
}

CIKTSummaryInfo::~CIKTSummaryInfo() {
    if (propertySets != nullptr)
        propertySets->Release();
    names->Release();
}

bool CIKTSummaryInfo::Find(const char* name, Place& place) {
    int code = 0;
    if (propertySets == nullptr || name == nullptr || !names->Lookup(name, code))
        return false;
    const auto high = static_cast<PROPID>(static_cast<DWORD>(code) >> kDocumentSummaryShift);
    place = high != 0 ? Place{kt::sys::PropertySet::DocumentSummary, high}
                      : Place{kt::sys::PropertySet::Summary, static_cast<PROPID>(code)};
    return true;
}

IPropertyStorage* CIKTSummaryInfo::OpenSet(kt::sys::PropertySet set, bool write) {
    IPropertyStorage* opened = nullptr;
    if (SUCCEEDED(kt::sys::OpenPropertySet(propertySets, set, write ? kWriteMode : kReadMode,
                                           &opened)))
        return opened;
    if (write && SUCCEEDED(kt::sys::CreatePropertySet(propertySets, set, &opened)))
        return opened;
    return nullptr;
}

// Both sets are opened for reading, and the one the name lives in is read.
int CIKTSummaryInfo::GetProperty(const char* name, CKTVariant* value) {
    Place place;
    if (value == nullptr || !Find(name, place))
        return 0;
    const PropertyStorageRef summary(OpenSet(kt::sys::PropertySet::Summary, false));
    const PropertyStorageRef documentSummary(OpenSet(kt::sys::PropertySet::DocumentSummary, false));
    IPropertyStorage* properties =
        place.set == kt::sys::PropertySet::Summary ? summary.get() : documentSummary.get();
    if (properties == nullptr)
        return 0;
    PROPSPEC selector = {};
    selector.ulKind = PRSPEC_PROPID;
    selector.propid = place.id;
    kt::sys::ReadPropertyValue read;
    if (FAILED(properties->ReadMultiple(1, &selector, &read.value)) || read.value.vt != VT_LPSTR ||
        read.value.pszVal == nullptr)
        return 0;
    *value = static_cast<const char*>(read.value.pszVal);
    return 1;
}

// The set is opened, or made, before the value is looked at: a refused value
// can leave a new empty set behind.
int CIKTSummaryInfo::SetProperty(const char* name, const tagKTVARIANT* value) {
    Place place;
    if (value == nullptr || !Find(name, place))
        return 0;
    const PropertyStorageRef properties(OpenSet(place.set, true));
    if (properties == nullptr)
        return 0;
    // A property cannot be made empty: the old value stays.
    std::string text = NarrowText(*value);
    if (text.empty())
        return 0;
    PROPSPEC selector = {};
    selector.ulKind = PRSPEC_PROPID;
    selector.propid = place.id;
    PROPVARIANT written;
    PropVariantInit(&written);
    written.vt = VT_LPSTR;
    written.pszVal = text.data();
    const HRESULT status = properties->WriteMultiple(1, &selector, &written, place.id);
    properties->Commit(STGC_DEFAULT);
    return SUCCEEDED(status);
}

CTEnum<const char*>* CIKTSummaryInfo::EnumProperties() { return names->GetEnum(); }

int CIKTSummaryInfo::RemoveName(const char* name) {
    return name != nullptr && names->Remove(name);
}

// Emptied in place, not replaced: an enumerator a caller holds stays usable.
void CIKTSummaryInfo::RemoveAllNames() { names->Clear(); }
