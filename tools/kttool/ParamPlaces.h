// The places a parameter tree is copied from and to, as kttool's command line
// names them: "text:FILE" (the text form), "ini:FILE" (a private profile
// file), "reg:HKCU\KEY" and "reg:HKLM\KEY" (the registry), "stor:FILE" or
// "stor:FILE:PATH" (a compound file, or a storage in it) and "-" (standard
// output, as text; a destination only).
#pragma once

#include <memory>
#include <ostream>
#include <string>

#include "kticore/params/Param.h"

namespace kttool {

enum class PlaceRole {
    kSource,       // read only: the place is left as it was
    kDestination,  // written: what the place holds already stays, merged
};

class ParamPlace {
public:
    virtual ~ParamPlace() = default;
    // The tree, valid while the place lives.
    virtual IParam* Tree() = 0;
    // Behind the copy into the place: what makes it last (a text file is
    // written, standard output printed). Failures are thrown.
    virtual void Finish(std::ostream& out) = 0;
};

// Throws UsageError for a name that is no place, std::runtime_error for a
// place that cannot be opened: a missing file or key, or one that cannot be
// read or made.
std::unique_ptr<ParamPlace> OpenPlace(const std::string& name, PlaceRole role);

}  // namespace kttool
