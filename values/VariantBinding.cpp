// Moving a value between a variant and a plain memory location whose kind the
// caller names. Numbers and records are copied as bytes, texts are copied,
// objects are counted; a blob moves its two fields and with them, on the way
// in, the ownership of its bytes.
#include <cstring>

#include "kticore/values/Variant.h"
#include "values/TextCopy.h"

namespace {

// The bytes that a kind copied as it lies takes in memory: a number, a
// record, or a blob's two fields.
size_t PlainSize(unsigned short vt) {
    switch (vt) {
    case KTVT_BOOL:
    case KTVT_ULONG:
    case KTVT_INT:
    case KTVT_UINT:
    case KTVT_LONG:
    case KTVT_FLOAT:
        return sizeof(ULONG);
    case KTVT_BYTE:
        return sizeof(unsigned char);
    case KTVT_WORD:
        return sizeof(unsigned short);
    case KTVT_DOUBLE:
        return sizeof(double);
    case KTVT_SIZE:
    case KTVT_POINT:
        return sizeof(tagSIZE);
    case KTVT_RSIZE:
    case KTVT_RPOINT:
    case KTVT_RECT:
        return sizeof(tagRSIZE);
    case KTVT_RRECT:
        return sizeof(tagRRECT);
    case KTVT_BLOB:
        return sizeof(tagKTBLOB);
    default:
        return 0;
    }
}

bool IsBindable(unsigned short vt) { return vt != KTVT_EMPTY && vt <= KTVT_WSTR; }

void* ValueArea(tagKTVARIANT* value) { return &value->sizeVal; }

// Copies before it frees: the text at `*target` may be the variant's own.
template <class Unit>
void ReplaceText(Unit** target, const Unit* text) {
    Unit* copy = kt::CopyText(text);
    delete[] *target;
    *target = copy;
}

}  // namespace

// Without a location or a variant, both move nothing and change nothing.
int KTVariantBindToValue(unsigned short vt, void* target, tagKTVARIANT* value) {
    if (!IsBindable(vt) || target == nullptr || value == nullptr)
        return 0;
    switch (vt) {
    case KTVT_STR:
        ReplaceText(static_cast<char**>(target), value->pszVal);
        break;
    case KTVT_WSTR:
        ReplaceText(static_cast<KTWCHAR**>(target), value->pwszVal);
        break;
    case KTVT_OBJECT: {
        IKTUnknown** object = static_cast<IKTUnknown**>(target);
        // The reference is added first: the object there may be this one.
        if (value->punkVal != nullptr)
            value->punkVal->AddRef();
        if (*object != nullptr)
            (*object)->Release();
        *object = value->punkVal;
        break;
    }
    default:
        std::memcpy(target, ValueArea(value), PlainSize(vt));
        break;
    }
    return 1;
}

int KTVariantBindFromValue(unsigned short vt, void* source, tagKTVARIANT* value) {
    if (value == nullptr || (source == nullptr && IsBindable(vt)))
        return 0;
    KTVariantClear(value);
    value->vt = vt;
    if (!IsBindable(vt))
        return 0;
    switch (vt) {
    case KTVT_STR:
        value->pszVal = kt::CopyText(*static_cast<char* const*>(source));
        break;
    case KTVT_WSTR:
        value->pwszVal = kt::CopyText(*static_cast<KTWCHAR* const*>(source));
        break;
    case KTVT_OBJECT:
        value->punkVal = *static_cast<IKTUnknown* const*>(source);
        if (value->punkVal != nullptr)
            value->punkVal->AddRef();
        break;
    default:  // a blob's bytes now belong to the variant: the source gives them up
        std::memcpy(ValueArea(value), source, PlainSize(vt));
        break;
    }
    return 1;
}

int CKTVariant::BindToValue(unsigned short vt, void* target) {
    return KTVariantBindToValue(vt, target, this);
}

int CKTVariant::BindFromValue(unsigned short vt, void* source) {
    return KTVariantBindFromValue(vt, source, this);
}
