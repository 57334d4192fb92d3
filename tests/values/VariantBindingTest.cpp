#include "kticore/values/Variant.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/Counted.h"
#include "tests/support/WideText.h"

namespace {

using kt::test::CCounted;
using kt::test::W;
using kt::test::Wide;

constexpr unsigned char kUntouched = 0xCD;

// Numbers and records: exactly the bytes of the kind go out, whatever kind
// the variant has, and come back in as that kind.
TEST(VariantBinding, NumbersAndRecordsMoveTheirBytes) {
    const struct {
        unsigned short vt;
        size_t bytes;
    } cases[] = {{KTVT_BOOL, 4},  {KTVT_BYTE, 1},   {KTVT_WORD, 2},   {KTVT_ULONG, 4},
                 {KTVT_INT, 4},   {KTVT_UINT, 4},   {KTVT_LONG, 4},   {KTVT_DOUBLE, 8},
                 {KTVT_FLOAT, 4}, {KTVT_SIZE, 8},   {KTVT_RSIZE, 16}, {KTVT_POINT, 8},
                 {KTVT_RPOINT, 16}, {KTVT_RECT, 16}, {KTVT_RRECT, 32}};
    // Read as any of these kinds, whatever the variant's own.
    CKTVariant value(tagRRECT{1.5, -2.5, 3.25, 1e300});
    value.vt = KTVT_EMPTY;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.vt);
        unsigned char target[40];
        std::memset(target, kUntouched, sizeof target);
        ASSERT_EQ(KTVariantBindToValue(c.vt, target, &value), 1);
        EXPECT_EQ(std::memcmp(target, &value.rrcVal, c.bytes), 0);
        EXPECT_EQ(target[c.bytes], kUntouched);

        CKTVariant loaded("to be cleared");
        ASSERT_EQ(loaded.BindFromValue(c.vt, target), 1);
        EXPECT_EQ(loaded.vt, c.vt);
        EXPECT_EQ(std::memcmp(&loaded.rrcVal, target, c.bytes), 0);
    }
}

// A null text goes out as null; texts are copied over what was there, even
// when that is the variant's own.
TEST(VariantBinding, TextsAreCopiedOverWhatWasThere) {
    CKTVariant narrow("abc"), wide(W("wide").c_str()), loaded;
    char* text = new char[4]{'o', 'l', 'd', 0};
    ASSERT_EQ(narrow.BindToValue(KTVT_STR, &text), 1);
    EXPECT_STREQ(text, "abc");
    EXPECT_NE(text, narrow.pszVal);
    ASSERT_EQ(KTVariantBindToValue(KTVT_STR, &narrow.pszVal, &narrow), 1);
    EXPECT_STREQ(narrow.pszVal, "abc");
    KTWCHAR* units = nullptr;
    ASSERT_EQ(wide.BindToValue(KTVT_WSTR, &units), 1);
    EXPECT_EQ(Wide(units), W("wide"));

    ASSERT_EQ(loaded.BindFromValue(KTVT_STR, &text), 1);
    EXPECT_STREQ(loaded.pszVal, "abc");
    EXPECT_NE(loaded.pszVal, text);
    ASSERT_EQ(loaded.BindFromValue(KTVT_WSTR, &units), 1);
    EXPECT_EQ(Wide(loaded.pwszVal), W("wide"));
    EXPECT_NE(loaded.pwszVal, units);
    delete[] units;

    ASSERT_EQ(CKTVariant(static_cast<const char*>(nullptr)).BindToValue(KTVT_STR, &text), 1);
    EXPECT_EQ(text, nullptr);
}

TEST(VariantBinding, ObjectsAreCountedAndBlobsShareThenMoveTheirBytes) {
    auto* first = new CCounted;
    auto* second = new CCounted;
    {
        CKTVariant value(static_cast<IKTUnknown*>(second)), loaded;
        IKTUnknown* target = first;
        first->AddRef();
        ASSERT_EQ(value.BindToValue(KTVT_OBJECT, &target), 1);
        EXPECT_EQ(target, second);
        EXPECT_EQ(first->References(), 1u);
        ASSERT_EQ(value.BindToValue(KTVT_OBJECT, &target), 1);  // the same object again
        EXPECT_EQ(second->References(), 3u);
        target->Release();
        ASSERT_EQ(loaded.BindFromValue(KTVT_OBJECT, &target), 1);
        EXPECT_EQ(loaded.punkVal, second);
        EXPECT_EQ(second->References(), 3u);
    }
    EXPECT_EQ(second->References(), 1u);
    first->Release();
    second->Release();

    unsigned char bytes[] = {7, 8};
    CKTVariant blob(tagKTBLOB{2, bytes}), empty(tagKTBLOB{0, nullptr});
    tagKTBLOB shared{};
    ASSERT_EQ(blob.BindToValue(KTVT_BLOB, &shared), 1);
    EXPECT_EQ(shared.data, blob.blobVal.data);
    ASSERT_EQ(empty.BindToValue(KTVT_BLOB, &shared), 1);
    EXPECT_EQ(shared.size, 0u);
    EXPECT_EQ(shared.data, nullptr);
    tagKTBLOB given{3, new unsigned char[3]{1, 2, 3}};
    ASSERT_EQ(blob.BindFromValue(KTVT_BLOB, &given), 1);  // frees the old bytes, owns these
    EXPECT_EQ(blob.blobVal.data, given.data);
    EXPECT_EQ(blob.blobVal.size, 3u);
}

TEST(VariantBinding, KindsOutsideTheTablesAreRefused) {
    for (const unsigned short vt : {0, 20, static_cast<int>(KTVT_BORROWED)}) {
        SCOPED_TRACE(vt);
        CKTVariant value(5);
        unsigned char target[8];
        std::memset(target, kUntouched, sizeof target);
        EXPECT_EQ(value.BindToValue(vt, target), 0);
        EXPECT_EQ(target[0], kUntouched);

        // Cleared, and bearing the kind.
        CKTVariant loaded("cleared");
        EXPECT_EQ(loaded.BindFromValue(vt, target), 0);
        tagKTVARIANT expected;
        KTVariantInit(&expected);
        expected.vt = vt;
        EXPECT_EQ(std::memcmp(&loaded, &expected, sizeof expected), 0);
    }
}

TEST(VariantBinding, NullLocationsAndVariantsAreRefused) {
    CKTVariant value(5);
    EXPECT_EQ(value.BindToValue(KTVT_INT, nullptr), 0);
    EXPECT_EQ(value.BindFromValue(KTVT_STR, nullptr), 0);
    EXPECT_EQ(value.vt, KTVT_INT);
    EXPECT_EQ(value.intVal, 5);
    int number = 7;
    EXPECT_EQ(KTVariantBindToValue(KTVT_INT, &number, nullptr), 0);
    EXPECT_EQ(KTVariantBindFromValue(KTVT_INT, &number, nullptr), 0);
    EXPECT_EQ(number, 7);
}

}  // namespace
