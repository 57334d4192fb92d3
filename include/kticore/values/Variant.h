// The one loosely typed value of the library, and a counted run of bytes.
//
// tagKTVARIANT is plain data that crosses module boundaries: a 16-bit kind and
// a value area big enough for four doubles. Its kind numbers are stored in
// files and streams and never change. Text, blob and object kinds own what
// they point at; CKTVariant and KTBlob are thin owning classes over the
// records, with no fields and no virtual operations of their own.
#pragma once

#include "kticore/core/Unknown.h"
#include "kticore/strings/XString.h"
#include "kticore/strings/XStringW.h"

enum KTVARENUM : unsigned short {
    KTVT_EMPTY = 0,
    KTVT_BOOL = 1,     // 32 bits, 0 or 1
    KTVT_BYTE = 2,
    KTVT_WORD = 3,
    KTVT_ULONG = 4,    // 32 bits
    KTVT_INT = 5,
    KTVT_UINT = 6,
    KTVT_LONG = 7,     // 32 bits, signed
    KTVT_DOUBLE = 8,
    KTVT_FLOAT = 9,
    KTVT_STR = 10,     // owns a char array
    KTVT_SIZE = 11,
    KTVT_RSIZE = 12,
    KTVT_POINT = 13,
    KTVT_RPOINT = 14,
    KTVT_RECT = 15,    // excludes its right and bottom edge
    KTVT_RRECT = 16,   // includes its right and bottom edge
    KTVT_BLOB = 17,    // owns the bytes
    KTVT_OBJECT = 18,  // holds one reference
    KTVT_WSTR = 19,    // owns a 16-bit array
    KTVT_BORROWED = 16384,  // an object pointer without a reference
};

// The double twins of the Win32 geometric records.
struct tagRSIZE {
    double cx;
    double cy;
};
struct tagRPOINT {
    double x;
    double y;
};
struct tagRRECT {
    double left;
    double top;
    double right;
    double bottom;
};

// `data` comes from array new and belongs to whoever owns the record.
struct tagKTBLOB {
    ULONG size;
    unsigned char* data;
};

struct tagKTVARIANT {
    unsigned short vt;
    union {
        ULONG boolVal;
        unsigned char bVal;
        unsigned short uiVal;
        ULONG ulVal;
        int intVal;
        unsigned int uintVal;
        LONG lVal;
        double dblVal;
        float fltVal;
        char* pszVal;
        tagSIZE sizeVal;
        tagRSIZE rsizeVal;
        tagPOINT ptVal;
        tagRPOINT rptVal;
        tagRECT rcVal;
        tagRRECT rrcVal;
        tagKTBLOB blobVal;
        IKTUnknown* punkVal;
        KTWCHAR* pwszVal;
    };
};

// Zeroes the whole record without looking at it.
KTCORE_API void KTVariantInit(tagKTVARIANT* v);
// Frees what the kind owns (nothing for an unknown kind), then zeroes the
// record. The record must have been initialised.
KTCORE_API void KTVariantClear(tagKTVARIANT* v);
// Clears `dst`, copies the record and makes the owned part its own. There is
// no guard against `dst == src`: the clear comes first and both end empty.
KTCORE_API void KTVariantCopy(tagKTVARIANT* dst, const tagKTVARIANT* src);

// Makes `dst` the value of `src` in kind `vt`, by the fixed conversion matrix:
// 1 on success, 0 for a pair the matrix does not name, a text that does not
// read as the number asked for, or an unknown `vt`. With `dst == src` the
// conversion is made in place and a failure leaves the variant as it was;
// otherwise a failure leaves `dst` empty. KTVT_BORROWED is made only here,
// from an object: the pointer without a reference.
KTCORE_API int KTVariantChangeType(tagKTVARIANT* dst, const tagKTVARIANT* src, unsigned short vt);
// Stores the value area, read as kind `vt` (value->vt is not looked at), in
// what `target` points at; a text is copied over the one there, an object
// replaces the one there with a reference of its own. 0 for a `vt` of 0 or
// an unknown one, and nothing is touched.
KTCORE_API int KTVariantBindToValue(unsigned short vt, void* target, tagKTVARIANT* value);
// Clears `value` and loads it as kind `vt` from what `source` points at; a
// text is copied, an object gets a reference, a blob's bytes are taken over.
// 0 for a `vt` of 0 or an unknown one: `value` is then cleared and bears it.
KTCORE_API int KTVariantBindFromValue(unsigned short vt, void* source, tagKTVARIANT* value);

class KTCORE_API KTBlob : public tagKTBLOB {
public:
    KTBlob();
    // `size` zero bytes.
    explicit KTBlob(unsigned long size);
    // Copies the size and, when there are any, the bytes.
    KTBlob(const tagKTBLOB& source);
    KTBlob(const tagKTBLOB* source);
    KTBlob(const KTBlob& source);
    ~KTBlob();

    // Every assignment copies the bytes: a blob never shares what it owns.
    KTBlob& operator=(const tagKTBLOB* source);
    KTBlob& operator=(const tagKTBLOB& source);
    KTBlob& operator=(const KTBlob& source);
    void Clear();

    // 1 when the sizes and the bytes are equal.
    int operator==(const tagKTBLOB& other) const;
    int operator==(const tagKTBLOB* other) const;
};

// The integer constructors take a second argument: the value 1 (KTVT_BOOL)
// makes a boolean of the number instead; any other value is ignored.
//
// The kinds follow the C++ type, so `unsigned long` and `long` make kinds 4
// and 7 on every build. On Windows these are 32 bits; natively (LP64) they are
// wider, and the variant keeps their low 32 bits as the kinds prescribe.
class KTCORE_API CKTVariant : public tagKTVARIANT {
public:
    CKTVariant();
    ~CKTVariant();

    CKTVariant(const char* text);
    CKTVariant(const KTWCHAR* text);
    CKTVariant(const CXString& text);
    CKTVariant(const CXStringW& text);
    CKTVariant(unsigned char value, unsigned short asKind = 0);
    CKTVariant(unsigned short value, unsigned short asKind = 0);
    CKTVariant(unsigned long value, unsigned short asKind = 0);
    CKTVariant(int value, unsigned short asKind = 0);
    CKTVariant(unsigned int value, unsigned short asKind = 0);
    CKTVariant(long value, unsigned short asKind = 0);
    CKTVariant(double value);
    CKTVariant(float value);
    CKTVariant(const tagSIZE& value);
    CKTVariant(const tagRSIZE& value);
    CKTVariant(const tagPOINT& value);
    CKTVariant(const tagRPOINT& value);
    CKTVariant(const tagRECT& value);
    CKTVariant(const tagRRECT& value);
    CKTVariant(const tagKTBLOB& value);
    CKTVariant(IKTUnknown* object);
    CKTVariant(const tagKTVARIANT& source);
    CKTVariant(const tagKTVARIANT* source);
    CKTVariant(const CKTVariant& source);

    CKTVariant& operator=(const char* text);
    CKTVariant& operator=(const KTWCHAR* text);
    CKTVariant& operator=(const CXString& text);
    CKTVariant& operator=(const CXStringW& text);
    // Not boolean-keeping: any other kind becomes KTVT_BYTE.
    CKTVariant& operator=(unsigned char value);
    // Boolean-keeping: a boolean stays a boolean and stores (value != 0).
    CKTVariant& operator=(unsigned short value);
    CKTVariant& operator=(unsigned long value);
    CKTVariant& operator=(int value);
    CKTVariant& operator=(unsigned int value);
    CKTVariant& operator=(long value);
    CKTVariant& operator=(double value);
    CKTVariant& operator=(float value);
    CKTVariant& operator=(const tagSIZE& value);
    CKTVariant& operator=(const tagRSIZE& value);
    CKTVariant& operator=(const tagPOINT& value);
    CKTVariant& operator=(const tagRPOINT& value);
    CKTVariant& operator=(const tagRECT& value);
    CKTVariant& operator=(const tagRRECT& value);
    CKTVariant& operator=(const tagKTBLOB& value);
    CKTVariant& operator=(IKTUnknown* object);
    CKTVariant& operator=(const tagKTVARIANT& source);
    CKTVariant& operator=(const tagKTVARIANT* source);
    CKTVariant& operator=(const CKTVariant& source);

    // Typed reads give the bytes of the value area as they are, whatever the
    // kind: the caller knows it.
    operator unsigned char() const;
    operator unsigned short() const;
    operator unsigned long() const;
    operator int() const;
    operator unsigned int() const;
    operator long() const;
    operator double() const;
    operator float() const;
    operator char*() const;
    operator IKTUnknown*() const;
    operator tagSIZE() const;
    operator tagRSIZE() const;
    operator tagPOINT() const;
    operator tagRPOINT() const;
    operator tagRECT() const;
    operator tagRRECT() const;
    // Shares the variant's bytes: the result must not be freed.
    operator tagKTBLOB() const;
    // The one read with an effect: a narrow text is turned into a wide one in
    // place (kind 19) and the new array is returned. Two threads may not read
    // one narrow variant through it at once.
    operator KTWCHAR*() const;

    void Clear();
    // In place with a null `src` or this variant (1 at once when it already
    // has kind `vt`), else from `src`: KTVariantChangeType.
    int ChangeType(unsigned short vt, tagKTVARIANT* src = nullptr);
    int BindToValue(unsigned short vt, void* target);
    int BindFromValue(unsigned short vt, void* source);
    // Takes over `source`'s record; `source.vt` becomes 0, its value area is
    // left alone.
    void Attach(tagKTVARIANT& source);
    // Hands the record to the caller; this variant's kind becomes 0 and its
    // value area is left alone.
    tagKTVARIANT Detach();

    // Never converts: different kinds are not equal. Points, sizes and
    // rectangles of doubles compare with an absolute tolerance of 0.001; two
    // empty rectangles are equal. A null text equals only a null text.
    int operator==(const tagKTVARIANT& other) const;
    int operator==(const tagKTVARIANT* other) const;
};
