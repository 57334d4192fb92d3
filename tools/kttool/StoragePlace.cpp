// A tree in a compound file, at its root or in a storage inside it.
#include <memory>

#include "kticore/files/FileUtilities.h"
#include "kticore/params/StorageParam.h"
#include "kticore/strings/XStringW.h"
#include "params/Held.h"
#include "tools/kttool/PlatformPlaces.h"
#include "tools/kttool/TempFile.h"

namespace kttool {
namespace {

using kt::params::Held;

// A destination is written through a copy of its file (or a new one), which
// replaces the file only once the whole tree is in it: a copy that fails
// leaves the file as it was, or not there.
class StoragePlace : public ParamPlace {
public:
    StoragePlace(const PlaceName& place, PlaceRole role) : path(place.where.c_str()) {
        if (role == PlaceRole::kSource) {
            storage.Reset(open_Storage(path, 1));
        } else {
            copy = std::make_unique<TempFile>();
            if (Fio_IsFileExist(path)) {
                Fio_CopyFile(path, copy->Name(), 0);
                storage.Reset(open_Storage(copy->Name(), 0));
            } else {
                storage.Reset(new_Storage(copy->Name(), 0));
            }
        }
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
        storage.Reset(nullptr);
        Fio_CopyFile(copy->Name(), path, 0);
    }

private:
    CXStringW path;
    std::unique_ptr<TempFile> copy;  // a destination's; outlives the storage on it
    Held<IXStorage> storage;         // outlives the tree on it
    Held<IParam> root;
    Held<IParam> section;
};

}  // namespace

std::unique_ptr<ParamPlace> OpenStoragePlace(const PlaceName& place, PlaceRole role) {
    return std::make_unique<StoragePlace>(place, role);
}

}  // namespace kttool
