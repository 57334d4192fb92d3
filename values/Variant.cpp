// The variant record and its owning class. Moving a variant as a whole always
// copies the whole record, value area included.
#include <cstring>
#include <string>

#include "kticore/values/Variant.h"
#include "values/BlobBytes.h"
#include "values/TextCopy.h"

namespace {

using kt::CopyText;

// Within 0.001 of each other, tested as the stored form's readers always did:
// a difference of exactly 0.001 may still count as equal.
bool Near(double a, double b) { return !(a - 0.001 > b) && !(b > a + 0.001); }

bool IsEmpty(const tagRECT& r) { return r.left >= r.right || r.top >= r.bottom; }
bool IsEmpty(const tagRRECT& r) { return r.left > r.right || r.top > r.bottom; }

template <class Char>
bool SameText(const Char* a, const Char* b) {
    if (a == nullptr || b == nullptr)
        return a == b;
    const size_t length = std::char_traits<Char>::length(a);
    return length == std::char_traits<Char>::length(b) &&
           std::char_traits<Char>::compare(a, b, length) == 0;
}

// A value of `kind` in `field`, for the constructors. They write the kind and
// the bytes of the value and nothing else: the rest of the value area keeps
// whatever lay there.
template <class T>
void Construct(tagKTVARIANT& v, unsigned short kind, T tagKTVARIANT::*field, T value) {
    v.vt = kind;
    v.*field = value;
}

// The integer constructors: asKind 1 makes a boolean of the number.
template <class T>
void ConstructNumber(tagKTVARIANT& v, unsigned short kind, T tagKTVARIANT::*field, T value,
                     unsigned short asKind) {
    if (asKind == KTVT_BOOL)
        Construct<ULONG>(v, KTVT_BOOL, &tagKTVARIANT::boolVal, value != 0);
    else
        Construct(v, kind, field, value);
}

// Assignment of a scalar: a variant of another kind is cleared first; one of
// the same kind has only its value replaced.
template <class T>
CKTVariant& Assign(CKTVariant& v, unsigned short kind, T tagKTVARIANT::*field, T value) {
    if (v.vt != kind) {
        KTVariantClear(&v);
        v.vt = kind;
    }
    v.*field = value;
    return v;
}

// Assignment of an owned pointer, made before the clear: the source may be
// the variant's own text.
template <class T>
CKTVariant& AssignOwned(CKTVariant& v, unsigned short kind, T* tagKTVARIANT::*field, T* copy) {
    KTVariantClear(&v);
    v.vt = kind;
    v.*field = copy;
    return v;
}

template <class T>
CKTVariant& AssignKeepingBool(CKTVariant& v, unsigned short kind, T tagKTVARIANT::*field,
                              T value) {
    if (v.vt == KTVT_BOOL) {
        v.boolVal = value != 0;
        return v;
    }
    return Assign(v, kind, field, value);
}

}  // namespace

void KTVariantInit(tagKTVARIANT* v) { std::memset(static_cast<void*>(v), 0, sizeof *v); }

void KTVariantClear(tagKTVARIANT* v) {
    switch (v->vt) {
    case KTVT_STR:
        delete[] v->pszVal;
        break;
    case KTVT_WSTR:
        delete[] v->pwszVal;
        break;
    case KTVT_BLOB:
        delete[] v->blobVal.data;
        break;
    case KTVT_OBJECT:
        if (v->punkVal != nullptr)
            v->punkVal->Release();
        break;
    default:
        break;
    }
    KTVariantInit(v);
}

void KTVariantCopy(tagKTVARIANT* dst, const tagKTVARIANT* src) {
    KTVariantClear(dst);
    std::memcpy(static_cast<void*>(dst), src, sizeof *dst);
    switch (dst->vt) {
    case KTVT_STR:
        dst->pszVal = CopyText(dst->pszVal);
        break;
    case KTVT_WSTR:
        dst->pwszVal = CopyText(dst->pwszVal);
        break;
    case KTVT_BLOB:
        dst->blobVal.data = kt::CopyBlobBytes(dst->blobVal.data, dst->blobVal.size);
        break;
    case KTVT_OBJECT:
        if (dst->punkVal != nullptr)
            dst->punkVal->AddRef();
        break;
    default:
        break;
    }
}

CKTVariant::CKTVariant() { KTVariantInit(this); }

CKTVariant::~CKTVariant() { KTVariantClear(this); }

CKTVariant::CKTVariant(const char* text) {
    Construct<char*>(*this, KTVT_STR, &tagKTVARIANT::pszVal, CopyText(text));
}

CKTVariant::CKTVariant(const KTWCHAR* text) {
    Construct<KTWCHAR*>(*this, KTVT_WSTR, &tagKTVARIANT::pwszVal, CopyText(text));
}

CKTVariant::CKTVariant(const CXString& text) {
    Construct<char*>(*this, KTVT_STR, &tagKTVARIANT::pszVal, CopyText(text, text.GetSize()));
}

CKTVariant::CKTVariant(const CXStringW& text) {
    Construct<KTWCHAR*>(*this, KTVT_WSTR, &tagKTVARIANT::pwszVal,
                        CopyText(text, text.GetSize()));
}

CKTVariant::CKTVariant(unsigned char value, unsigned short asKind) {
    ConstructNumber<unsigned char>(*this, KTVT_BYTE, &tagKTVARIANT::bVal, value, asKind);
}

CKTVariant::CKTVariant(unsigned short value, unsigned short asKind) {
    ConstructNumber<unsigned short>(*this, KTVT_WORD, &tagKTVARIANT::uiVal, value, asKind);
}

CKTVariant::CKTVariant(unsigned long value, unsigned short asKind) {
    ConstructNumber<ULONG>(*this, KTVT_ULONG, &tagKTVARIANT::ulVal, static_cast<ULONG>(value),
                           asKind);
}

CKTVariant::CKTVariant(int value, unsigned short asKind) {
    ConstructNumber<int>(*this, KTVT_INT, &tagKTVARIANT::intVal, value, asKind);
}

CKTVariant::CKTVariant(unsigned int value, unsigned short asKind) {
    ConstructNumber<unsigned int>(*this, KTVT_UINT, &tagKTVARIANT::uintVal, value, asKind);
}

CKTVariant::CKTVariant(long value, unsigned short asKind) {
    ConstructNumber<LONG>(*this, KTVT_LONG, &tagKTVARIANT::lVal, static_cast<LONG>(value),
                          asKind);
}

CKTVariant::CKTVariant(double value) {
    Construct(*this, KTVT_DOUBLE, &tagKTVARIANT::dblVal, value);
}

CKTVariant::CKTVariant(float value) { Construct(*this, KTVT_FLOAT, &tagKTVARIANT::fltVal, value); }

CKTVariant::CKTVariant(const tagSIZE& value) {
    Construct(*this, KTVT_SIZE, &tagKTVARIANT::sizeVal, value);
}

CKTVariant::CKTVariant(const tagRSIZE& value) {
    Construct(*this, KTVT_RSIZE, &tagKTVARIANT::rsizeVal, value);
}

CKTVariant::CKTVariant(const tagPOINT& value) {
    Construct(*this, KTVT_POINT, &tagKTVARIANT::ptVal, value);
}

CKTVariant::CKTVariant(const tagRPOINT& value) {
    Construct(*this, KTVT_RPOINT, &tagKTVARIANT::rptVal, value);
}

CKTVariant::CKTVariant(const tagRECT& value) {
    Construct(*this, KTVT_RECT, &tagKTVARIANT::rcVal, value);
}

CKTVariant::CKTVariant(const tagRRECT& value) {
    Construct(*this, KTVT_RRECT, &tagKTVARIANT::rrcVal, value);
}

CKTVariant::CKTVariant(const tagKTBLOB& value) {
    KTBlob copy(value);
    Construct<tagKTBLOB>(*this, KTVT_BLOB, &tagKTVARIANT::blobVal, copy);
    copy.data = nullptr;  // now owned by the variant
}

CKTVariant::CKTVariant(IKTUnknown* object) {
    if (object != nullptr)
        object->AddRef();
    Construct(*this, KTVT_OBJECT, &tagKTVARIANT::punkVal, object);
}

CKTVariant::CKTVariant(const tagKTVARIANT& source) {
    KTVariantInit(this);
    KTVariantCopy(this, &source);
}

CKTVariant::CKTVariant(const tagKTVARIANT* source) : CKTVariant(*source) {}

CKTVariant::CKTVariant(const CKTVariant& source)
    : CKTVariant(static_cast<const tagKTVARIANT&>(source)) {}

CKTVariant& CKTVariant::operator=(const char* text) {
    return AssignOwned(*this, KTVT_STR, &tagKTVARIANT::pszVal, CopyText(text));
}

CKTVariant& CKTVariant::operator=(const KTWCHAR* text) {
    return AssignOwned(*this, KTVT_WSTR, &tagKTVARIANT::pwszVal, CopyText(text));
}

CKTVariant& CKTVariant::operator=(const CXString& text) {
    return AssignOwned(*this, KTVT_STR, &tagKTVARIANT::pszVal, CopyText(text, text.GetSize()));
}

CKTVariant& CKTVariant::operator=(const CXStringW& text) {
    return AssignOwned(*this, KTVT_WSTR, &tagKTVARIANT::pwszVal,
                       CopyText(text, text.GetSize()));
}

CKTVariant& CKTVariant::operator=(unsigned char value) {
    return Assign(*this, KTVT_BYTE, &tagKTVARIANT::bVal, value);
}

CKTVariant& CKTVariant::operator=(unsigned short value) {
    return AssignKeepingBool(*this, KTVT_WORD, &tagKTVARIANT::uiVal, value);
}

CKTVariant& CKTVariant::operator=(unsigned long value) {
    return AssignKeepingBool<ULONG>(*this, KTVT_ULONG, &tagKTVARIANT::ulVal,
                                    static_cast<ULONG>(value));
}

CKTVariant& CKTVariant::operator=(int value) {
    return AssignKeepingBool(*this, KTVT_INT, &tagKTVARIANT::intVal, value);
}

CKTVariant& CKTVariant::operator=(unsigned int value) {
    return AssignKeepingBool(*this, KTVT_UINT, &tagKTVARIANT::uintVal, value);
}

CKTVariant& CKTVariant::operator=(long value) {
    return AssignKeepingBool<LONG>(*this, KTVT_LONG, &tagKTVARIANT::lVal, static_cast<LONG>(value));
}

CKTVariant& CKTVariant::operator=(double value) {
    return Assign(*this, KTVT_DOUBLE, &tagKTVARIANT::dblVal, value);
}

CKTVariant& CKTVariant::operator=(float value) {
    return Assign(*this, KTVT_FLOAT, &tagKTVARIANT::fltVal, value);
}

CKTVariant& CKTVariant::operator=(const tagSIZE& value) {
    return Assign(*this, KTVT_SIZE, &tagKTVARIANT::sizeVal, value);
}

CKTVariant& CKTVariant::operator=(const tagRSIZE& value) {
    return Assign(*this, KTVT_RSIZE, &tagKTVARIANT::rsizeVal, value);
}

CKTVariant& CKTVariant::operator=(const tagPOINT& value) {
    return Assign(*this, KTVT_POINT, &tagKTVARIANT::ptVal, value);
}

CKTVariant& CKTVariant::operator=(const tagRPOINT& value) {
    return Assign(*this, KTVT_RPOINT, &tagKTVARIANT::rptVal, value);
}

CKTVariant& CKTVariant::operator=(const tagRECT& value) {
    return Assign(*this, KTVT_RECT, &tagKTVARIANT::rcVal, value);
}

CKTVariant& CKTVariant::operator=(const tagRRECT& value) {
    return Assign(*this, KTVT_RRECT, &tagKTVARIANT::rrcVal, value);
}

CKTVariant& CKTVariant::operator=(const tagKTBLOB& value) {
    KTBlob copy(value);  // before the clear: `value` may be our own blob
    KTVariantClear(this);
    vt = KTVT_BLOB;
    blobVal = copy;
    copy.data = nullptr;
    return *this;
}

CKTVariant& CKTVariant::operator=(IKTUnknown* object) {
    if (object != nullptr)
        object->AddRef();  // before the clear, which may release the last reference
    KTVariantClear(this);
    vt = KTVT_OBJECT;
    punkVal = object;
    return *this;
}

CKTVariant& CKTVariant::operator=(const tagKTVARIANT& source) {
    KTVariantCopy(this, &source);
    return *this;
}

CKTVariant& CKTVariant::operator=(const tagKTVARIANT* source) {
    KTVariantCopy(this, source);
    return *this;
}

CKTVariant& CKTVariant::operator=(const CKTVariant& source) {
    KTVariantCopy(this, &source);
    return *this;
}

CKTVariant::operator unsigned char() const { return bVal; }
CKTVariant::operator unsigned short() const { return uiVal; }
CKTVariant::operator unsigned long() const { return ulVal; }
CKTVariant::operator int() const { return intVal; }
CKTVariant::operator unsigned int() const { return uintVal; }
CKTVariant::operator long() const { return lVal; }
CKTVariant::operator double() const { return dblVal; }
CKTVariant::operator float() const { return fltVal; }
CKTVariant::operator char*() const { return pszVal; }
CKTVariant::operator IKTUnknown*() const { return punkVal; }
CKTVariant::operator tagSIZE() const { return sizeVal; }
CKTVariant::operator tagRSIZE() const { return rsizeVal; }
CKTVariant::operator tagPOINT() const { return ptVal; }
CKTVariant::operator tagRPOINT() const { return rptVal; }
CKTVariant::operator tagRECT() const { return rcVal; }
CKTVariant::operator tagRRECT() const { return rrcVal; }
CKTVariant::operator tagKTBLOB() const { return blobVal; }

CKTVariant::operator KTWCHAR*() const {
    if (vt != KTVT_STR)
        return pwszVal;
    // This read of a const variant changes it, by design: the wide text it
    // hands out is owned by the variant from then on.
    CKTVariant& self = const_cast<CKTVariant&>(*this);
    // A null narrow text becomes the empty wide one, as CXStringW makes it.
    const CXStringW converted(pszVal);
    KTWCHAR* wide = CopyText(converted, converted.GetSize());
    delete[] self.pszVal;
    self.vt = KTVT_WSTR;
    self.pwszVal = wide;
    return wide;
}

void CKTVariant::Clear() { KTVariantClear(this); }

void CKTVariant::Attach(tagKTVARIANT& source) {
    KTVariantClear(this);
    std::memcpy(static_cast<void*>(static_cast<tagKTVARIANT*>(this)), &source, sizeof source);
    source.vt = KTVT_EMPTY;
}

tagKTVARIANT CKTVariant::Detach() {
    tagKTVARIANT record;
    std::memcpy(static_cast<void*>(&record), static_cast<const tagKTVARIANT*>(this),
                sizeof record);
    vt = KTVT_EMPTY;
    return record;
}

int CKTVariant::operator==(const tagKTVARIANT& other) const {
    if (&other == this)
        return 1;
    if (other.vt != vt || vt > KTVT_WSTR)
        return 0;
    switch (vt) {
    case KTVT_EMPTY:
        return 1;
    case KTVT_BYTE:
        return bVal == other.bVal;
    case KTVT_WORD:
        return uiVal == other.uiVal;
    case KTVT_DOUBLE:
        return dblVal == other.dblVal;
    case KTVT_FLOAT:
        return fltVal == other.fltVal;
    case KTVT_STR:
        return SameText(pszVal, other.pszVal);
    case KTVT_WSTR:
        return SameText<KTWCHAR>(pwszVal, other.pwszVal);
    case KTVT_SIZE:
        return sizeVal.cx == other.sizeVal.cx && sizeVal.cy == other.sizeVal.cy;
    case KTVT_POINT:
        return ptVal.x == other.ptVal.x && ptVal.y == other.ptVal.y;
    case KTVT_RSIZE:
        return Near(rsizeVal.cx, other.rsizeVal.cx) && Near(rsizeVal.cy, other.rsizeVal.cy);
    case KTVT_RPOINT:
        return Near(rptVal.x, other.rptVal.x) && Near(rptVal.y, other.rptVal.y);
    case KTVT_RECT: {
        const tagRECT &a = rcVal, &b = other.rcVal;
        if (IsEmpty(a) && IsEmpty(b))
            return 1;
        return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
    }
    case KTVT_RRECT: {
        const tagRRECT &a = rrcVal, &b = other.rrcVal;
        if (IsEmpty(a) && IsEmpty(b))
            return 1;
        return Near(a.left, b.left) && Near(a.top, b.top) && Near(a.right, b.right) &&
               Near(a.bottom, b.bottom);
    }
    case KTVT_BLOB:
        return kt::SameBlob(blobVal, other.blobVal);
    case KTVT_OBJECT:
        return punkVal == other.punkVal;
    default:  // the 32-bit kinds: boolean, unsigned long, int, unsigned int, long
        return ulVal == other.ulVal;
    }
}

int CKTVariant::operator==(const tagKTVARIANT* other) const { return *this == *other; }
