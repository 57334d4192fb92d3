// A tree in a compound file, at its root or in a storage inside it.
#include "kticore/files/FileUtilities.h"
#include "kticore/params/StorageParam.h"
#include "kticore/strings/XStringW.h"
#include "params/Held.h"
#include "tools/kttool/PlatformPlaces.h"

namespace kttool {
namespace {

using kt::params::Held;

class StoragePlace : public ParamPlace {
public:
    StoragePlace(const PlaceName& place, PlaceRole role) {
        const CXStringW path(place.where.c_str());
        if (role == PlaceRole::kSource)
            storage.Reset(open_Storage(path, 1));
        else if (Fio_IsFileExist(path))
            storage.Reset(open_Storage(path, 0));
        else
            storage.Reset(new_Storage(path, 0));
        root.Reset(new_IXStorParam(storage.get()));
        if (place.inside.empty())
            return;
        section.Reset(root->GetSection(place.inside.c_str(), role == PlaceRole::kDestination));
        if (!section)
            throw PlaceError("no storage \"" + place.inside + "\" in the file" +
                             (role == PlaceRole::kSource ? "" : ", nor can it be made"));
    }
    IParam* Tree() override { return section ? section.get() : root.get(); }
    // The tree commits as it is released, children first, and says nothing
    // of a failure: the file's own commit, behind them, does.
    void Finish(std::ostream&) override {
        section.Reset(nullptr);
        root.Reset(nullptr);
        const int status = storage->Commit();
        if (status < 0)
            throw CXException(XErrorFromHResult(static_cast<DWORD>(status)));
    }

private:
    Held<IXStorage> storage;  // outlives the tree on it
    Held<IParam> root;
    Held<IParam> section;
};

}  // namespace

std::unique_ptr<ParamPlace> OpenStoragePlace(const PlaceName& place, PlaceRole role) {
    return std::make_unique<StoragePlace>(place, role);
}

}  // namespace kttool
