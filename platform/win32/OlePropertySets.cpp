#include "platform/OlePropertySets.h"

namespace kt::sys {
namespace {

const FMTID& FormatOf(PropertySet set) {
    return set == PropertySet::Summary ? FMTID_SummaryInformation : FMTID_DocSummaryInformation;
}

}  // namespace

IPropertySetStorage* PropertySetsOf(IStorage* storage) {
    void* sets = nullptr;
    if (FAILED(storage->QueryInterface(IID_IPropertySetStorage, &sets)))
        return nullptr;
    return static_cast<IPropertySetStorage*>(sets);
}

HRESULT OpenPropertySet(IPropertySetStorage* sets, PropertySet set, DWORD mode,
                        IPropertyStorage** out) {
    return sets->Open(FormatOf(set), mode, out);
}

HRESULT CreatePropertySet(IPropertySetStorage* sets, PropertySet set, IPropertyStorage** out) {
    return sets->Create(FormatOf(set), nullptr, PROPSETFLAG_ANSI,
                        STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_READWRITE, out);
}

void ClearPropertyValue(PROPVARIANT* value) { PropVariantClear(value); }

}  // namespace kt::sys
