// Dialog layouts: `dlg` files, the twins of `wld` files, that enlarge a
// translated dialog and move its controls. A parameter text:
//
//   [\app.dll\Dialogs\#100]     module file, "Dialogs", "#" and the id
//   Dialog Size=z20,10          added to the dialog's width and height
//   3=t0,0,10,0                 offsets of the edges of control 3
//
// in dialog units. A dialog named by text has no "#": [\app.dll\Dialogs\Main].
#pragma once

#include <string>

#include "kticore/platform/Platform.h"
#include "translation/SuppDictionary.h"

namespace kt {

// The name of the size value; every other value of kind rectangle is a
// control's edge offsets, named by the control's position in the template.
constexpr char kDialogSizeValue[] = "Dialog Size";

// The resource key of dialog section `name` of module section `module`, as
// Supp_MakeKeyA makes it: "#100" gives "app.dll#1#100", "Main" gives
// "app.dll#1#Main". Its Supp_HashKey identifies the layout.
KTCORE_API std::string DialogLayoutKey(const char* module, const char* name);

// Adds the layouts of the file at `path` to `dictionary.dialogs`, by the
// case-blind hash of each dialog's resource key; a dialog defined again
// replaces its layout. 1, or 0 when the file is missing or unreadable (a
// CXFileException). Any bytes are read as parameter text (zero bytes are
// dropped), so a file that is not one loads what its lines happen to say.
KTCORE_API int LoadDialogLayouts(CSuppDictionary& dictionary, const KTWCHAR* path);

}  // namespace kt
