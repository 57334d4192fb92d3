// Builds without the registry and compound files.
#include "tools/kttool/CommandLine.h"
#include "tools/kttool/PlatformPlaces.h"

namespace kttool {

std::unique_ptr<ParamPlace> OpenRegistryPlace(const PlaceName&, PlaceRole) {
    throw UsageError("registry places exist on Windows only");
}

std::unique_ptr<ParamPlace> OpenStoragePlace(const PlaceName&, PlaceRole) {
    throw UsageError("compound files exist on Windows only");
}

}  // namespace kttool
