// Work on any parameter tree through IParam alone, so that each of these
// crosses back ends: compare, copy, dump, the text form and the stream form.
#pragma once

#include "kticore/params/Param.h"
#include "kticore/streams/Stream.h"
#include "kticore/strings/XString.h"

// 1 when `b` holds every value and section of `a` with equal values (one
// way: what only `b` has is not looked at); 0 otherwise or for a null tree.
KTCORE_API int Param_Cmp(IParam* a, IParam* b);
// Merges `from` into `to`: sections first, then values. Nothing of `to` is
// removed; what `to` cannot hold, its back end drops.
KTCORE_API void Param_CopyTo(IParam* from, IParam* to);
// The names of the values and sections, to the debugger output.
KTCORE_API void Dump_Param(IParam* param);

// The text form on one line: each header and value one piece ended by `|`.
// 1, or 0 for a null tree.
KTCORE_API int Param_Param2String(IParam* param, CXString& text);
// Adds the tree in `text` to `param`; 0 for a null tree.
KTCORE_API int Param_String2Param(CXString& text, IParam* param);
// Writes the text form through an output file: the target is replaced only
// when all of it has been written. Failures of the file layer are thrown.
KTCORE_API int Param_Param2IniFile(IParam* param, const KTWCHAR* path);
// Adds the tree in a text file to `param`.
KTCORE_API int Param_IniFile2Param(const KTWCHAR* path, IParam* param);

// The stream form: sub-sections (name, then the section), an empty name,
// values (name, then the stored variant), an empty name. 1, or 0 when the
// stream failed.
KTCORE_API int SaveParamToXStream(IXStream* stream, IParam* param);
// Replaces the content of `param` by the stream form. A cut stream gives
// what was read and 1; a failing stream empties `param` and gives 0.
KTCORE_API int LoadParamFromXStream(IXStream* stream, IParam* param);
