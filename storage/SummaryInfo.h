// CIKTSummaryInfo: the document properties of one compound storage, as
// IKTProperty gives them; CStorage makes one per query. The property sets
// are opened for each call and closed again: nothing of the file is cached.
#pragma once

#include "kticore/core/MapEnum.h"
#include "kticore/storage/Property.h"
#include "platform/OlePropertySets.h"

class CIKTSummaryInfo : public CKTUnknownImpl<IKTProperty> {
public:
    // A storage without property sets gives an object that knows no name.
    explicit CIKTSummaryInfo(IStorage* storage);
    ~CIKTSummaryInfo() override;

    int GetProperty(const char* name, CKTVariant* value) override;
    int SetProperty(const char* name, const tagKTVARIANT* value) override;
    CTEnum<const char*>* EnumProperties() override;
    void Reserved6() override {}
    void Reserved7() override {}
    int RemoveName(const char* name) override;
    void RemoveAllNames() override;

private:
    // Where a known name lives: its set and its id there.
    struct Place {
        kt::sys::PropertySet set;
        PROPID id;
    };
    bool Find(const char* name, Place& place);
    // The set open for reading or writing; null when it cannot be had. A set
    // that is not there is made for writing, never one that is.
    IPropertyStorage* OpenSet(kt::sys::PropertySet set, bool write);

    using NameTable = CTMapEnum<const char*, int, const char*, int>;

    IPropertySetStorage* propertySets;
    // Name to property code. Counted: the enumerators of the names hold it.
    NameTable* names;
};
