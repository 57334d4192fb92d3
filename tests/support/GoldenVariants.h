// One value of every stored kind with the bytes of its stored form, written
// out by hand: the file format that every stream shares.
#pragma once

#include <vector>

#include "kticore/values/Variant.h"
#include "tests/support/Streams.h"

namespace kt::test {

struct Golden {
    CKTVariant value;
    Bytes bytes;
};

// The empty text, which a null text is also stored as: the terminator stays.
inline const Bytes kEmptyTextForm = {0x0A, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00};

// One value of every kind with its stored bytes, written out by hand.
inline std::vector<Golden> GoldenForms() {
    static unsigned char blob[] = {0xAA, 0xBB};
    std::vector<Golden> forms;
    forms.push_back({CKTVariant(), {0x00, 0x00, 0x00, 0x00, 0x00, 0x00}});
    forms.push_back({CKTVariant(1u, KTVT_BOOL), {0x01, 0x00, 0x01, 0x00, 0x00, 0x00}});
    forms.push_back({CKTVariant(static_cast<unsigned char>(7)), {0x02, 0x00, 0x07}});
    forms.push_back({CKTVariant(static_cast<unsigned short>(0x1234)), {0x03, 0x00, 0x34, 0x12}});
    forms.push_back({CKTVariant(0x89ABCDEFul), {0x04, 0x00, 0xEF, 0xCD, 0xAB, 0x89}});
    forms.push_back({CKTVariant(-2), {0x05, 0x00, 0xFE, 0xFF, 0xFF, 0xFF}});
    forms.push_back({CKTVariant(7u), {0x06, 0x00, 0x07, 0x00, 0x00, 0x00}});
    forms.push_back({CKTVariant(-1l), {0x07, 0x00, 0xFF, 0xFF, 0xFF, 0xFF}});
    forms.push_back({CKTVariant(1.5), {0x08, 0x00, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F}});
    forms.push_back({CKTVariant(1.5f), {0x09, 0x00, 0x00, 0x00, 0xC0, 0x3F}});
    forms.push_back({CKTVariant("ab"), {0x0A, 0x00, 0x03, 0x00, 0x00, 0x00, 0x61, 0x62, 0x00}});
    forms.push_back({CKTVariant(""), kEmptyTextForm});
    forms.push_back({CKTVariant(tagSIZE{1, -1}), {0x0B, 0x00, 1, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF}});
    forms.push_back({CKTVariant(tagRSIZE{1.0, -2.0}),
                     {0x0C, 0x00, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F, 0, 0, 0, 0, 0, 0, 0x00, 0xC0}});
    forms.push_back({CKTVariant(tagPOINT{2, 3}), {0x0D, 0x00, 2, 0, 0, 0, 3, 0, 0, 0}});
    forms.push_back({CKTVariant(tagRPOINT{0.5, 0.25}),
                     {0x0E, 0x00, 0, 0, 0, 0, 0, 0, 0xE0, 0x3F, 0, 0, 0, 0, 0, 0, 0xD0, 0x3F}});
    forms.push_back({CKTVariant(tagRECT{1, 2, 3, 4}),
                     {0x0F, 0x00, 1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 0}});
    forms.push_back({CKTVariant(tagRRECT{1, 2, 3, 4}),
                     {0x10, 0x00, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F, 0, 0, 0, 0, 0, 0, 0x00, 0x40,
                      0,    0,    0, 0, 0, 0, 0x08, 0x40, 0, 0, 0, 0, 0, 0, 0x10, 0x40}});
    forms.push_back({CKTVariant(tagKTBLOB{2, blob}), {0x11, 0x00, 0x02, 0x00, 0x00, 0x00, 0xAA, 0xBB}});
    forms.push_back({CKTVariant(static_cast<IKTUnknown*>(nullptr)), {0x12, 0x00, 0x00}});
    forms.push_back({CKTVariant(KTW("ab")),
                     {0x13, 0x00, 0x06, 0x00, 0x00, 0x00, 0x61, 0x00, 0x62, 0x00, 0x00, 0x00}});
    return forms;
}

}  // namespace kt::test
