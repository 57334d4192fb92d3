// The platform's property sets of a compound file (OLE's IPropertySetStorage
// and IPropertyStorage), as the document properties use them: the two
// published sets, opened and made by the seam; the property storages
// themselves are called directly. Windows only.
#pragma once

#include "platform/OleStorage.h"

#include <propidl.h>

namespace kt::sys {

enum class PropertySet {
    Summary,          // FMTID_SummaryInformation
    DocumentSummary,  // FMTID_DocSummaryInformation
};

// The storage's property sets with one reference; null when it has none.
IPropertySetStorage* PropertySetsOf(IStorage* storage);
// IPropertySetStorage::Open of an existing set in `mode`.
HRESULT OpenPropertySet(IPropertySetStorage* sets, PropertySet set, DWORD mode,
                        IPropertyStorage** out);
// A new set of narrow text in the ANSI code page, replacing one of that
// format, open for writing in exclusive share mode; in the file at once,
// empty, even if nothing is written to it.
HRESULT CreatePropertySet(IPropertySetStorage* sets, PropertySet set, IPropertyStorage** out);
// A value for ReadMultiple to fill; what the read allocated in it is freed
// with it, however the reader leaves.
struct ReadPropertyValue {
    ReadPropertyValue();
    ~ReadPropertyValue();
    ReadPropertyValue(const ReadPropertyValue&) = delete;
    ReadPropertyValue& operator=(const ReadPropertyValue&) = delete;

    PROPVARIANT value;
};

}  // namespace kt::sys
