// How a variant lies in a registry value of binary data: its kind as a 32-bit
// number, then the bytes of the value as the processor has them; a blob
// gives its size in 32 bits before its bytes. Text has no row here: it is
// registry text. Objects and the kinds above wide text have no form.
#pragma once

#include <vector>

#include "kticore/values/Variant.h"

namespace kt::params {

// The bytes of the kind number in front of every binary value.
constexpr DWORD kKindBytes = 4;

// The binary data of `value`; false for a kind that has no row.
bool EncodeBinaryValue(const tagKTVARIANT& value, std::vector<BYTE>& data);
// Fills the cleared `value` from binary data; false, with `value` left
// empty, when the data's kind has no row or its size is not the row's.
bool DecodeBinaryValue(const BYTE* data, DWORD size, tagKTVARIANT* value);

}  // namespace kt::params
