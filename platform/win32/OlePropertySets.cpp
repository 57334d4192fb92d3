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
    const HRESULT status = sets->Create(FormatOf(set), nullptr, PROPSETFLAG_ANSI,
                                        STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_READWRITE, out);
    if (FAILED(status))
        return status;
    // Written out at once, empty (a write of no property marks it changed).
    // Wine 8 leaves a new set that is never written as an empty stream, which
    // it opens again as a set but does not read back what goes into it.
    (*out)->WriteMultiple(0, nullptr, nullptr, 0);
    (*out)->Commit(STGC_DEFAULT);
    return status;
}

ReadPropertyValue::ReadPropertyValue() { PropVariantInit(&value); }

ReadPropertyValue::~ReadPropertyValue() { PropVariantClear(&value); }

}  // namespace kt::sys
