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
// format, open for writing in exclusive share mode.
HRESULT CreatePropertySet(IPropertySetStorage* sets, PropertySet set, IPropertyStorage** out);
// Frees what a value that ReadMultiple gave owns.
void ClearPropertyValue(PROPVARIANT* value);

}  // namespace kt::sys
