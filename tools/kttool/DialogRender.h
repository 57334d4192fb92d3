// The dialogs of a module as the library serves them to a patched module:
// each template rewritten under its resource key with its layout, created
// hidden with a procedure that does nothing, its controls' texts measured,
// and shown for a moment to be pictured on request.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "tools/kttool/PeResources.h"

namespace kttool {

// A control whose text does not fit.
struct Overflow {
    size_t position = 0;    // in the template, 0 the first
    int dialogUnits = 0;    // the width it lacks
    WideText text;
};

// A live text that is none of the dictionary's translations.
struct Escape {
    std::string position;  // "caption", "control 3"
    WideText text;
};

struct RenderedDialog {
    std::string moduleFile;  // as keys name it
    ResourceName name;
    DWORD keyHash = 0;       // of the dialog's resource key: its layout's
    bool created = false;
    // In pixels: the client area's width, four horizontal dialog units, and
    // each control's place in the client area in template order.
    int clientWidth = 0;
    int fourUnits = 0;
    std::vector<RECT> controls;
    std::vector<Overflow> overflows;
    // With a dictionary: the texts that escaped translation, such as those a
    // control class keeps that the rewriting does not translate.
    std::vector<Escape> escapes;
};

// "app.dll dialog 100", and "app.dll dialog 100 control 3 "text"": for
// messages.
std::string DialogName(const RenderedDialog& dialog);
std::string OverflowName(const RenderedDialog& dialog, const Overflow& overflow);
std::string EscapeName(const RenderedDialog& dialog, const Escape& escape);

// Every dialog of the module at `path` under the process's dictionary;
// with a `pictures` directory, each saved there as <module>_<dialog>.png,
// the overflowing controls outlined. Throws std::runtime_error when the
// module cannot be loaded or a picture not written.
std::vector<RenderedDialog> RenderDialogs(const std::string& path, const std::string& pictures);

// The dictionary `wld` and its layouts: `dlg`, else the dictionary's twin
// when there is one; the layout file loaded, empty for none. Throws
// std::runtime_error for a file that cannot be read.
std::string LoadTranslation(const std::string& wld, const std::string& dlg);

}  // namespace kttool
