// The places of a parameter tree that only Windows has: the registry and
// compound files. Elsewhere naming one is a command line that cannot be run.
#pragma once

#include <memory>

#include "tools/kttool/ParamPlaces.h"
#include "tools/kttool/PlaceName.h"

namespace kttool {

// Throw PlaceError for a key that is missing or cannot be made.
std::unique_ptr<ParamPlace> OpenRegistryPlace(const PlaceName& place, PlaceRole role);
// Throws PlaceError for a path in the file that is missing or cannot be made.
std::unique_ptr<ParamPlace> OpenStoragePlace(const PlaceName& place, PlaceRole role);

}  // namespace kttool
