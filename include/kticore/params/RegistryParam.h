// A parameter tree kept in the system registry: a section is a sub-key, a
// value is a registry value. Nothing is held in memory: each call goes to the
// registry, so two trees on one key see each other's changes at once.
// Windows only.
//
// Text is stored as REG_SZ; wide text too, and it reads back as narrow text.
// Every other kind is REG_BINARY data led by its 32-bit kind number; objects
// are dropped without a word. A registry value of another type, or binary
// data whose size does not fit its kind, reads as absent. Value names are
// taken as they stand: a `\` is part of the name, and the empty name is the
// key's unnamed value. A section of no name has no key: its path gives null.
// Clear empties the sub-keys and leaves them in place.
#pragma once

#include "kticore/params/Param.h"

// The key `subKey` under HKEY_LOCAL_MACHINE or HKEY_CURRENT_USER, opened with
// all access, as a tree with one reference for the caller. Null when the key
// is missing (it is not made) or cannot be opened with write access; a null
// `subKey` is refused with XE_BAD_ARGUMENT. Exported under their plain names.
extern "C" KTCORE_API IParam* new_IParamLMReg(const KTWCHAR* subKey);
extern "C" KTCORE_API IParam* new_IParamCUReg(const KTWCHAR* subKey);
