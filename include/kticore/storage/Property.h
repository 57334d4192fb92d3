// IKTProperty: the document properties of a compound file (title, author and
// the like, as the platform's shell and office programs show them), read and
// written by plain names as narrow text. A storage hands one out through
// QueryInterface(typeid(IKTProperty), ...); each query makes a new object.
// It keeps the OLE storage open; on a transacted storage, properties set
// after the storage object's release are committed by no one, so release the
// properties before the storage. Windows only.
#pragma once

#include "kticore/core/Enum.h"
#include "kticore/core/Unknown.h"
#include "kticore/values/Variant.h"

// The names, exact in case: "Title", "Subject", "Author", "Keywords",
// "Comments", "Last Author", "App name", "Category", "Company". Failure is a
// result of 0, never an exception: an unknown name, a property that is not
// there or not narrow text, an empty value, a storage without properties.
struct IKTProperty : IKTUnknown {
    // 1 and `value` a narrow text (KTVT_STR); 0 leaves `value` as it was.
    virtual int GetProperty(const char* name, CKTVariant* value) = 0;
    // Narrow or wide text (KTVT_STR or KTVT_WSTR, wide text narrowed in the
    // ANSI code page), not empty; 1 when written. The property set is
    // committed here; the storage still commits as it always does.
    virtual int SetProperty(const char* name, const tagKTVARIANT* value) = 0;
    // The names this object still knows (not those the file holds), in the
    // order of its table; one reference. The enumerator keeps the names.
    virtual CTEnum<const char*>* EnumProperties() = 0;
    // Slots that do nothing.
    virtual void Reserved6() = 0;
    virtual void Reserved7() = 0;
    // Forgets a name in this object: it reads and writes as unknown from
    // then on. 1 if it was known.
    virtual int RemoveName(const char* name) = 0;
    virtual void RemoveAllNames() = 0;

protected:
    ~IKTProperty() = default;
};
