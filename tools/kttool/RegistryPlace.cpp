// A tree in the registry, below HKEY_CURRENT_USER or HKEY_LOCAL_MACHINE.
#include "kticore/params/RegistryParam.h"
#include "kticore/strings/XStringW.h"
#include "params/Held.h"
#include "tools/kttool/PlatformPlaces.h"

namespace kttool {
namespace {

using kt::params::Held;
using HiveOpener = IParam* (*)(const KTWCHAR*);

// The back end opens keys for writing too, so a key that can only be read
// is no source either.
class RegistryPlace : public ParamPlace {
public:
    RegistryPlace(const PlaceName& place, PlaceRole role) {
        const HiveOpener open = place.where == "HKCU" ? new_IParamCUReg : new_IParamLMReg;
        tree.Reset(open(CXStringW(place.inside.c_str())));
        if (tree)
            return;
        if (role == PlaceRole::kSource)
            throw PlaceError("no such key, or it cannot be opened for writing");
        const Held<IParam> hive(open(L""));
        if (hive)
            tree.Reset(hive->GetSection(place.inside.c_str(), 1));
        if (!tree)
            throw PlaceError("the key cannot be made");
    }
    IParam* Tree() override { return tree.get(); }
    void Finish(std::ostream&) override {}

private:
    Held<IParam> tree;
};

}  // namespace

std::unique_ptr<ParamPlace> OpenRegistryPlace(const PlaceName& place, PlaceRole role) {
    return std::make_unique<RegistryPlace>(place, role);
}

}  // namespace kttool
