// The text form of a tree: a header line per section, `[\path]`, with the
// section's values behind it as `name=` and a marked value, each piece split
// from the next by `|`; values before sub-sections.
#pragma once

#include "kticore/files/File.h"
#include "kticore/params/Param.h"

// Writes `param` and everything below it through out->Write. `path` is null
// at the top; below, it names the section in its header. A header or a value
// that does not fit the buffers of the form, or would not come back as one
// physical line (a name or a text with a line end), throws XE_BAD_ARGUMENT,
// as does a `|` in a header, a value name that would read back as another
// line, as more than one value or as another name, and a value of the root's
// section of no name, whose header is the root's; a blob too long for its
// entry goes with no digits instead. Values that
// would take their header's line past the reader's limit go on further lines.
void ParamText_Write(IParam* param, IXFile* out, const char* path);

// Adds the tree in the text of `in` to `root`. 0 for a null argument, else 1.
// Values that do not parse and includes that cannot be opened are skipped.
int ParamText_Read(IXFile* in, IParam* root);
