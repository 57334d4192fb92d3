#include "kticore/values/Variant.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <iterator>
#include <new>
#include <string>
#include <vector>

#include "tests/support/Counted.h"
#include "tests/support/WideText.h"

namespace {

using kt::test::CCounted;
using kt::test::Wide;

bool IsAllZero(const tagKTVARIANT& v) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(&v);
    for (size_t i = 0; i < sizeof v; ++i)
        if (bytes[i] != 0)
            return false;
    return true;
}


TEST(VariantRecord, HoldsFourDoublesAlignedForDoublesAndPointers) {
    EXPECT_EQ(sizeof(tagKTVARIANT), 40u);
    EXPECT_EQ(offsetof(tagKTVARIANT, dblVal), 8u);
    EXPECT_EQ(sizeof(CKTVariant), sizeof(tagKTVARIANT));
    EXPECT_EQ(sizeof(KTBlob), sizeof(tagKTBLOB));
}

// Placement of a variant on bytes of 0xCD, to see which bytes a constructor
// writes.
template <class... Args>
std::vector<unsigned char> RecordAfterConstruction(Args... args) {
    alignas(CKTVariant) unsigned char storage[sizeof(CKTVariant)];
    std::memset(storage, 0xCD, sizeof storage);
    auto* v = new (storage) CKTVariant(args...);
    const std::vector<unsigned char> record(storage, storage + sizeof storage);
    v->~CKTVariant();
    return record;
}

TEST(VariantConstruction, ScalarConstructorsWriteOnlyTheKindAndTheValue) {
    const struct {
        std::vector<unsigned char> record;
        size_t valueBytes;
    } cases[] = {
        {RecordAfterConstruction(static_cast<unsigned char>(7)), 1},
        {RecordAfterConstruction(5u, KTVT_BOOL), 4},
        {RecordAfterConstruction(-3l), 4},
        {RecordAfterConstruction(2.5), 8},
        {RecordAfterConstruction(tagPOINT{1, 2}), 8},
        {RecordAfterConstruction(tagRSIZE{1, 2}), 16},
    };
    const size_t valueStart = offsetof(tagKTVARIANT, dblVal);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.valueBytes);
        for (size_t i = sizeof(unsigned short); i < sizeof(tagKTVARIANT); ++i) {
            if (i < valueStart || i >= valueStart + c.valueBytes) {
                EXPECT_EQ(c.record[i], 0xCD) << "byte " << i;
            }
        }
    }
}

TEST(VariantConstruction, OnlyTheValueOneOfTheSecondArgumentMakesABoolean) {
    const CKTVariant yes(5u, KTVT_BOOL);
    EXPECT_EQ(yes.vt, KTVT_BOOL);
    EXPECT_EQ(yes.boolVal, 1u);
    const CKTVariant no(0, KTVT_BOOL);
    EXPECT_EQ(no.vt, KTVT_BOOL);
    EXPECT_EQ(no.boolVal, 0u);
    const CKTVariant ignored(5u, KTVT_WORD);
    EXPECT_EQ(ignored.vt, KTVT_UINT);
    EXPECT_EQ(ignored.uintVal, 5u);
}

TEST(VariantConstruction, NullTextIsATextKindWithNothingToFree) {
    CKTVariant narrow(static_cast<const char*>(nullptr));
    EXPECT_EQ(narrow.vt, KTVT_STR);
    EXPECT_EQ(narrow.pszVal, nullptr);
    KTVariantClear(&narrow);
    EXPECT_TRUE(IsAllZero(narrow));
    CKTVariant wide(static_cast<const KTWCHAR*>(nullptr));
    EXPECT_EQ(wide.vt, KTVT_WSTR);
    EXPECT_EQ(wide.pwszVal, nullptr);
}

TEST(VariantAssignment, IntegersKeepABooleanButTheByteDoesNot) {
    CKTVariant v(1, KTVT_BOOL);
    v = 7;
    EXPECT_EQ(v.vt, KTVT_BOOL);
    EXPECT_EQ(v.boolVal, 1u);
    v = 0ul;
    EXPECT_EQ(v.vt, KTVT_BOOL);
    EXPECT_EQ(v.boolVal, 0u);
    v = static_cast<unsigned char>(7);
    EXPECT_EQ(v.vt, KTVT_BYTE);
    EXPECT_EQ(v.bVal, 7);
}

TEST(VariantAssignment, AnotherKindIsClearedFirstTheSameKindKeepsItsOtherBytes) {
    CKTVariant v("text");
    v = 3.5;
    EXPECT_EQ(v.vt, KTVT_DOUBLE);
    EXPECT_EQ(v.dblVal, 3.5);
    v.rrcVal = tagRRECT{1, 2, 3, 4};
    v.vt = KTVT_INT;
    v = 9;  // same kind: only the four value bytes change
    EXPECT_EQ(v.intVal, 9);
    EXPECT_EQ(v.rrcVal.top, 2.0);
    v = 9u;  // another kind: cleared first
    EXPECT_EQ(v.vt, KTVT_UINT);
    EXPECT_EQ(v.rrcVal.top, 0.0);
}

TEST(VariantAssignment, SelfCopyEndsEmpty) {
    CKTVariant v("text");
    KTVariantCopy(&v, &v);
    EXPECT_EQ(v.vt, KTVT_EMPTY);
    EXPECT_TRUE(IsAllZero(v));
    CKTVariant w("text");
    CKTVariant& alias = w;
    w = alias;
    EXPECT_EQ(w.vt, KTVT_EMPTY);
}

TEST(VariantAssignment, OwnTextAndBlobCanBeAssignedBack) {
    CKTVariant v("abc");
    v = v.pszVal;
    EXPECT_STREQ(v.pszVal, "abc");
    unsigned char bytes[] = {1, 2, 3};
    CKTVariant b(tagKTBLOB{3, bytes});
    b = b.blobVal;
    ASSERT_EQ(b.blobVal.size, 3u);
    EXPECT_EQ(b.blobVal.data[2], 3);
}

TEST(VariantOwnership, ObjectKindHoldsOneReference) {
    auto* object = new CCounted;
    {
        CKTVariant v(static_cast<IKTUnknown*>(object));
        EXPECT_EQ(object->References(), 2u);
        CKTVariant copy(v);
        EXPECT_EQ(object->References(), 3u);
        copy = 1;
        EXPECT_EQ(object->References(), 2u);
        v = static_cast<IKTUnknown*>(object);  // reassigning the same object keeps it alive
        EXPECT_EQ(object->References(), 2u);
    }
    EXPECT_EQ(object->References(), 1u);
    object->Release();
}

TEST(VariantOwnership, ABorrowedObjectIsNeitherReferencedNorReleased) {
    auto* object = new CCounted;
    tagKTVARIANT borrowed;
    KTVariantInit(&borrowed);
    borrowed.vt = KTVT_BORROWED;
    borrowed.punkVal = object;
    {
        const CKTVariant copy(borrowed);
        EXPECT_EQ(copy.vt, KTVT_BORROWED);
        EXPECT_EQ(copy.punkVal, object);
        EXPECT_EQ(object->References(), 1u);
    }
    KTVariantClear(&borrowed);
    EXPECT_TRUE(IsAllZero(borrowed));
    EXPECT_EQ(object->References(), 1u);
    object->Release();
}

TEST(VariantOwnership, CopiesOwnTheirTextAndBytes) {
    unsigned char bytes[] = {0xAA, 0xBB};
    const CKTVariant blob(tagKTBLOB{2, bytes});
    EXPECT_NE(blob.blobVal.data, bytes);
    tagKTVARIANT copy;
    KTVariantInit(&copy);
    KTVariantCopy(&copy, &blob);
    EXPECT_NE(copy.blobVal.data, blob.blobVal.data);
    EXPECT_EQ(copy.blobVal.data[1], 0xBB);
    const CKTVariant wide(KTW("wide"));
    KTVariantCopy(&copy, &wide);
    ASSERT_EQ(copy.vt, KTVT_WSTR);
    EXPECT_EQ(Wide(copy.pwszVal), KTW("wide"));
    KTVariantClear(&copy);
    EXPECT_TRUE(IsAllZero(copy));
}

TEST(VariantOwnership, DetachAndAttachMoveOwnership) {
    CKTVariant v("owned");
    char* const text = v.pszVal;
    tagKTVARIANT record = v.Detach();
    EXPECT_EQ(v.vt, KTVT_EMPTY);
    EXPECT_EQ(v.pszVal, text);  // the value area is left alone
    v.Clear();                  // frees nothing
    EXPECT_EQ(record.pszVal, text);
    EXPECT_STREQ(record.pszVal, "owned");

    CKTVariant target(2.5);
    target.Attach(record);
    EXPECT_EQ(record.vt, KTVT_EMPTY);
    EXPECT_EQ(target.vt, KTVT_STR);
    EXPECT_EQ(target.pszVal, text);
}

TEST(VariantReads, WideReadTurnsANarrowTextWide) {
    CKTVariant v("h\xE9llo");
    const KTWCHAR* wide = v;
    EXPECT_EQ(v.vt, KTVT_WSTR);
    EXPECT_EQ(Wide(wide), KTW("h\u00E9llo"));
    EXPECT_EQ(static_cast<void*>(static_cast<char*>(v)), static_cast<const void*>(wide));
    CKTVariant number(5);
    EXPECT_EQ(static_cast<KTWCHAR*>(number), reinterpret_cast<KTWCHAR*>(number.pszVal));
    EXPECT_EQ(number.vt, KTVT_INT);
    // A null narrow text turns into the empty wide text.
    CKTVariant none(static_cast<const char*>(nullptr));
    const KTWCHAR* empty = none;
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty[0], 0);
}

TEST(VariantEquality, EachKindComparesByItsOwnRule) {
    unsigned char a[] = {1, 2, 3}, b[] = {1, 2, 3}, c[] = {1, 2, 4};
    auto* first = new CCounted;
    auto* second = new CCounted;
    const CKTVariant nullText(static_cast<const char*>(nullptr));
    const struct {
        CKTVariant left, right;
        bool equal;
    } cases[] = {
        // No conversion between kinds; text is exact.
        {CKTVariant(3), CKTVariant(3l), false},
        {CKTVariant("ab"), CKTVariant(KTW("ab")), false},
        {CKTVariant(3), CKTVariant(3), true},
        {CKTVariant(), CKTVariant(), true},
        {CKTVariant("ab"), CKTVariant("aB"), false},
        {CKTVariant(KTW("ab")), CKTVariant(KTW("ab")), true},
        {CKTVariant(KTW("ab")), CKTVariant(KTW("abc")), false},
        {nullText, nullText, true},
        {nullText, CKTVariant(""), false},
        {CKTVariant(""), nullText, false},
        // Scalars of floating point compare exactly.
        {CKTVariant(1.0), CKTVariant(1.0000001), false},
        {CKTVariant(1.0f), CKTVariant(1.0001f), false},
        // Geometry of doubles has an absolute tolerance of a thousandth,
        // including a difference of exactly that as the test computes it.
        {CKTVariant(tagRPOINT{1.0, 2.0}), CKTVariant(tagRPOINT{1.0005, 2.0005}), true},
        {CKTVariant(tagRPOINT{1.0, 2.0}), CKTVariant(tagRPOINT{1.0, 2.002}), false},
        {CKTVariant(tagRPOINT{1.0, 2.0}), CKTVariant(tagRPOINT{1.0 - 0.001, 2.0 + 0.001}), true},
        {CKTVariant(tagRSIZE{1000000.0, 0}), CKTVariant(tagRSIZE{1000000.0009, 0}), true},
        {CKTVariant(tagRSIZE{1000000.0, 0}), CKTVariant(tagRSIZE{1000000.002, 0}), false},
        {CKTVariant(tagRRECT{0, 0, 10, 10}), CKTVariant(tagRRECT{0.0009, 0, 10, 9.9991}), true},
        {CKTVariant(tagSIZE{1, 2}), CKTVariant(tagSIZE{1, 3}), false},
        {CKTVariant(tagPOINT{1, 2}), CKTVariant(tagPOINT{0, 2}), false},
        // Empty rectangles are equal; the double one includes its edges.
        {CKTVariant(tagRECT{0, 0, 0, 10}), CKTVariant(tagRECT{5, 5, 1, 1}), true},
        {CKTVariant(tagRRECT{0, 0, 0, 10}), CKTVariant(tagRRECT{5, 5, 1, 1}), false},
        {CKTVariant(tagRRECT{0, 0, -1, 10}), CKTVariant(tagRRECT{5, 5, 1, 1}), true},
        {CKTVariant(tagRECT{0, 0, 1, 10}), CKTVariant(tagRECT{0, 0, 2, 10}), false},
        // Blobs compare bytes, objects identity.
        {CKTVariant(tagKTBLOB{3, a}), CKTVariant(tagKTBLOB{3, b}), true},
        {CKTVariant(tagKTBLOB{3, a}), CKTVariant(tagKTBLOB{3, c}), false},
        {CKTVariant(tagKTBLOB{3, a}), CKTVariant(tagKTBLOB{2, a}), false},
        {CKTVariant(static_cast<IKTUnknown*>(first)), CKTVariant(static_cast<IKTUnknown*>(first)), true},
        {CKTVariant(static_cast<IKTUnknown*>(first)), CKTVariant(static_cast<IKTUnknown*>(second)), false},
    };
    for (size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(cases[i].left == cases[i].right, cases[i].equal) << "case " << i;
    first->Release();
    second->Release();
}

TEST(VariantEquality, ARecordEqualsItselfEvenOfAnUnknownKind) {
    CKTVariant v;
    v.vt = 77;
    EXPECT_TRUE(v == &v);
    CKTVariant w;
    w.vt = 77;
    EXPECT_FALSE(v == w);
    v.vt = w.vt = KTVT_EMPTY;
}

TEST(Blob, CopiesZeroFillsAndCompares) {
    const KTBlob zeros(4ul);
    ASSERT_EQ(zeros.size, 4u);
    EXPECT_EQ(zeros.data[0] | zeros.data[3], 0);
    unsigned char bytes[] = {9, 8};
    const tagKTBLOB record{2, bytes};
    KTBlob copy(record);
    EXPECT_NE(copy.data, bytes);
    EXPECT_TRUE(copy == record);
    const tagKTBLOB sizeOnly{5, nullptr};
    const KTBlob empty(&sizeOnly);
    EXPECT_EQ(empty.size, 5u);
    EXPECT_EQ(empty.data, nullptr);
    copy = &copy;  // assigning itself keeps the bytes
    EXPECT_TRUE(copy == &record);
    copy.Clear();
    EXPECT_EQ(copy.size, 0u);
    EXPECT_EQ(copy.data, nullptr);
}

TEST(Blob, AssignmentCopiesTheBytes) {
    unsigned char bytes[] = {1, 2, 3};
    const KTBlob source(tagKTBLOB{3, bytes});
    const tagKTBLOB record = source;  // the fields alone, sharing the bytes
    KTBlob fromRecord;
    fromRecord = record;
    KTBlob fromBlob(2ul);
    fromBlob = source;
    for (const KTBlob* copy : {&fromRecord, &fromBlob}) {
        ASSERT_EQ(copy->size, 3u);
        EXPECT_NE(copy->data, source.data);
        EXPECT_TRUE(*copy == source);
    }
}

}  // namespace
