// A parameter tree kept in a private profile file. Nothing is held in memory:
// each call goes to the file, so two trees on one file see each other's
// changes at once. Sections are flattened onto the file's sections by their
// full path ("[\]" for the root, "[\a\b]" below it), and values are keys
// whose text is the marked value text. What the file has no form for is
// dropped without a word: objects, wide text, key names the file cannot hold,
// the values of a section whose name the file would take for another's,
// texts with line ends or longer than a read of 64000 bytes takes back (a
// blob that long goes without digits, and reads back empty). A value path of
// 512 bytes or more is refused with XE_BAD_ARGUMENT, as in every back end.
#pragma once

#include "kticore/params/Param.h"

// The root of the tree in `file`, one reference for the caller. Opening a
// section that the file lacks writes it, with its directory and the file.
extern "C" KTCORE_API IParam* new_IParamIniFile(const KTWCHAR* file);
