// The stored form of a variant is a file format: each kind is checked
// against its bytes, on every seekable stream, and damaged input must come
// back as the documented failure, never as a crash or a wild allocation.
#include <gtest/gtest.h>

#include <string>

#include "kticore/core/Exception.h"
#include "tests/support/GoldenVariants.h"
#include "tests/support/Streams.h"
#include "tests/support/WideText.h"

namespace {

using kt::test::AllBytes;
using kt::test::Bytes;
using kt::test::Golden;
using kt::test::GoldenForms;
using kt::test::kEmptyTextForm;
using kt::test::Ref;
using kt::test::StreamKind;

class StoredVariant : public ::testing::TestWithParam<StreamKind> {
protected:
    Ref<IXStream> Fresh() { return Ref<IXStream>(GetParam().make()); }
    Ref<IXStream> Holding(const Bytes& bytes) { return kt::test::StreamOf(GetParam(), bytes); }
};

TEST_P(StoredVariant, EveryKindIsWrittenAsItsGoldenBytesAndReadBackFromThem) {
    for (const Golden& form : GoldenForms()) {
        SCOPED_TRACE("kind " + std::to_string(form.value.vt));
        Ref<IXStream> stream = Fresh();
        stream->WriteVariant(&form.value);
        EXPECT_EQ(AllBytes(stream.get()), form.bytes);
        stream->Seek(0, 0);
        CKTVariant read("something to clear");
        EXPECT_EQ(stream->ReadVariant(&read), form.value.vt == KTVT_OBJECT ? 0 : 1);
        EXPECT_EQ(read.vt, form.value.vt);
        if (form.value.vt != KTVT_OBJECT) {  // the stored form of no object reads as "none"
            EXPECT_TRUE(read == form.value);
        }
        EXPECT_EQ(stream->GetPosition(), form.bytes.size());
    }
    Ref<IXStream> stream = Fresh();
    const CKTVariant null(static_cast<const char*>(nullptr));
    stream->WriteVariant(&null);
    EXPECT_EQ(AllBytes(stream.get()), kEmptyTextForm);
}

TEST_P(StoredVariant, AStoredNaNComesBackBitForBit) {
    // Kind 8 compares exactly, so a NaN is not equal to its copy; its bytes
    // still pass through unchanged.
    const Bytes nan = {0x08, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF8, 0x7F};
    CKTVariant read;
    ASSERT_EQ(Holding(nan)->ReadVariant(&read), 1);
    EXPECT_FALSE(read == CKTVariant(read));
    Ref<IXStream> stream = Fresh();
    stream->WriteVariant(&read);
    EXPECT_EQ(AllBytes(stream.get()), nan);
}

TEST_P(StoredVariant, AnUnknownKindIsWrittenAsItsCodeAloneAndReadAsBadData) {
    for (const unsigned short kind : {20, 0x4000, 0xFFFF}) {
        Ref<IXStream> stream = Fresh();
        tagKTVARIANT odd;
        KTVariantInit(&odd);
        odd.vt = kind;
        odd.dblVal = 1.0;
        stream->WriteVariant(&odd);
        const Bytes code = {static_cast<unsigned char>(kind), static_cast<unsigned char>(kind >> 8)};
        EXPECT_EQ(AllBytes(stream.get()), code);
        stream->WriteDWord(0x04030201);
        stream->Seek(0, 0);
        CKTVariant read;
        try {
            stream->ReadVariant(&read);
            ADD_FAILURE() << "kind " << kind << " was read";
        } catch (const CXFileException& failure) {
            EXPECT_EQ(failure.code, XE_BAD_DATA);
            EXPECT_EQ(failure.operation, XFILEOP_READ_WRITE);
            EXPECT_EQ(kt::test::Wide(failure.name), kt::test::Wide(CXStringW(stream->GetName())));
        }
        EXPECT_EQ(read.vt, kind);
        read.vt = KTVT_EMPTY;  // nothing to free
    }
}

TEST_P(StoredVariant, TruncatedInputGivesWhatWasThereOrEndOfFile) {
    CKTVariant read;
    // Nothing at all: no kind, nothing read.
    EXPECT_EQ(Holding({})->ReadVariant(&read), 0);
    EXPECT_EQ(read.vt, KTVT_EMPTY);
    // A text kind whose length word is missing.
    EXPECT_EQ(Holding({0x0A, 0x00})->ReadVariant(&read), 0);
    EXPECT_EQ(read.vt, KTVT_STR);
    EXPECT_STREQ(read.pszVal, "");
    // A length that promises two gigabytes with two bytes behind it.
    EXPECT_EQ(Holding({0x0A, 0x00, 0xFF, 0xFF, 0xFF, 0x7F, 'a', 'b'})->ReadVariant(&read), 1);
    EXPECT_STREQ(read.pszVal, "ab");
    // Stored text without its terminator still reads terminated.
    EXPECT_EQ(Holding({0x0A, 0x00, 0x02, 0x00, 0x00, 0x00, 'a', 'b'})->ReadVariant(&read), 1);
    EXPECT_STREQ(read.pszVal, "ab");
    // An odd byte count of wide text: the last unit is completed with zeros.
    EXPECT_EQ(Holding({0x13, 0x00, 0x05, 0x00, 0x00, 0x00, 'a', 0, 'b'})->ReadVariant(&read), 1);
    ASSERT_EQ(read.vt, KTVT_WSTR);
    EXPECT_TRUE(read == CKTVariant(KTW("ab")));
    // A blob keeps the bytes that are there.
    EXPECT_EQ(Holding({0x11, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xAA})->ReadVariant(&read), 1);
    ASSERT_EQ(read.vt, KTVT_BLOB);
    ASSERT_EQ(read.blobVal.size, 1u);
    EXPECT_EQ(read.blobVal.data[0], 0xAA);
    // A part of a double is no error: something was read.
    EXPECT_EQ(Holding({0x08, 0x00, 0x01})->ReadVariant(&read), 1);
    EXPECT_EQ(read.vt, KTVT_DOUBLE);
    // A blob's missing length word is the end of the file.
    EXPECT_THROW(Holding({0x11, 0x00})->ReadVariant(&read), CXEofException);
}

TEST_P(StoredVariant, ABlobOfASizeWithoutBytesIsStoredAsThatManyZeros) {
    Ref<IXStream> stream = Fresh();
    const CKTVariant sizeOnly(tagKTBLOB{5, nullptr});
    const CKTVariant next(static_cast<unsigned char>(7));
    stream->WriteVariant(&sizeOnly);
    stream->WriteVariant(&next);
    EXPECT_EQ(AllBytes(stream.get()), (Bytes{0x11, 0, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0x02, 0, 7}));
    stream->Seek(0, 0);
    CKTVariant read;
    ASSERT_EQ(stream->ReadVariant(&read), 1);
    EXPECT_TRUE(read == sizeOnly);  // that many zeros, on both sides
    ASSERT_EQ(stream->ReadVariant(&read), 1);
    EXPECT_TRUE(read == next);
}

TEST_P(StoredVariant, LargeTextAndBlobRoundTrip) {
    const std::string text(300000, 'x');
    Bytes bytes(200001);
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(i * 7);
    Ref<IXStream> stream = Fresh();
    const CKTVariant storedText(text.c_str());
    const CKTVariant storedBlob(tagKTBLOB{static_cast<ULONG>(bytes.size()), bytes.data()});
    stream->WriteVariant(&storedText);
    stream->WriteVariant(&storedBlob);
    stream->Seek(0, 0);
    CKTVariant read;
    EXPECT_EQ(stream->ReadVariant(&read), 1);
    EXPECT_TRUE(read == storedText);
    EXPECT_EQ(stream->ReadVariant(&read), 1);
    EXPECT_TRUE(read == storedBlob);
}

INSTANTIATE_TEST_SUITE_P(Streams, StoredVariant, ::testing::ValuesIn(kt::test::kSeekableStreams),
                         kt::test::StreamKindName());

}  // namespace
