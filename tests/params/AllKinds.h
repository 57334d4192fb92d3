// A tree with a value of every kind that a back end can carry, in a section
// below the root, for the round trips.
#pragma once

#include "tests/params/ParamTestSupport.h"

namespace kt::test {

// A blob of `size` bytes that are not all alike.
inline CKTVariant Blob(unsigned long size) {
    KTBlob blob(size);
    for (unsigned long i = 0; i < size; ++i)
        blob.data[i] = static_cast<unsigned char>(i * 7);
    return CKTVariant(blob);
}

inline void FillWithEveryKind(IParam* tree, bool withWideText) {
    Set(tree, "empty", CKTVariant());
    Set(tree, "bool", CKTVariant(1, KTVT_BOOL));
    Set(tree, "byte", CKTVariant(static_cast<unsigned char>(200)));
    Set(tree, "word", CKTVariant(static_cast<unsigned short>(60000)));
    Set(tree, "ulong", CKTVariant(4000000000ul));
    Set(tree, "int", CKTVariant(-123456));
    Set(tree, "uint", CKTVariant(3000000000u));
    CKTVariant longValue(-7);
    longValue.vt = KTVT_LONG;
    Set(tree, "long", longValue);
    Set(tree, "double", CKTVariant(-1234.5678901234));
    Set(tree, "float", CKTVariant(3.25f));
    Set(tree, "text", CKTVariant("some text; with = and [brackets]"));
    Set(tree, "size", CKTVariant(tagSIZE{640, -480}));
    Set(tree, "rsize", CKTVariant(tagRSIZE{1.25, 2e-3}));
    Set(tree, "point", CKTVariant(tagPOINT{-1, 1}));
    Set(tree, "rpoint", CKTVariant(tagRPOINT{1e10, -0.5}));
    Set(tree, "rect", CKTVariant(tagRECT{1, 2, 300, 400}));
    Set(tree, "rrect", CKTVariant(tagRRECT{0.5, 0.25, 10.5, 20.75}));
    Set(tree, "blob", Blob(300));
    if (withWideText)
        Set(tree, "wide", CKTVariant(KTW("wide text")));
    Set(tree, "Sub\\Deeper\\leaf", CKTVariant(1));
}

}  // namespace kt::test
