#include "tools/kttool/ParamPlaces.h"

#include <stdexcept>
#include <vector>

#include "kticore/files/File.h"
#include "kticore/files/FileUtilities.h"
#include "kticore/params/IniFileParam.h"
#include "kticore/params/ParamTools.h"
#include "kticore/strings/XStringW.h"
#include "params/Held.h"
#include "tools/kttool/CommandLine.h"
#include "tools/kttool/FailureWords.h"
#include "tools/kttool/PlaceName.h"
#include "tools/kttool/PlatformPlaces.h"
#include "tools/kttool/TempFile.h"

namespace kttool {
namespace {

using kt::params::Held;

// The text form, through a tree in memory that is read from the file first
// (so a destination keeps what it had) and written to it at the end.
class TextPlace : public ParamPlace {
public:
    TextPlace(const std::string& path, PlaceRole role) : path(path.c_str()), tree(new_MemParam()) {
        try {
            Param_IniFile2Param(this->path, tree.get());
        } catch (const CXFileException& failure) {
            if (role == PlaceRole::kSource || failure.code != XE_FILE_NOT_FOUND)
                throw;
        }
    }
    IParam* Tree() override { return tree.get(); }
    void Finish(std::ostream&) override { Param_Param2IniFile(tree.get(), path); }

private:
    CXStringW path;
    Held<IParam> tree;
};

// A private profile file. Opening a section that lacks its marker key writes
// one, so a source is read through a copy and the file itself stays as it was.
class ProfilePlace : public ParamPlace {
public:
    ProfilePlace(const std::string& path, PlaceRole role) {
        const CXStringW wide(path.c_str());
        if (role == PlaceRole::kSource) {
            copy = std::make_unique<TempFile>();
            Fio_CopyFile(wide, copy->Name(), 0);
            tree.Reset(new_IParamIniFile(copy->Name()));
            return;
        }
        tree.Reset(new_IParamIniFile(wide));
        // The profile functions report no failure: a file that is not there
        // once its root has been opened could not be written.
        if (!Fio_IsFileExist(wide))
            throw PlaceError("cannot be written");
    }
    IParam* Tree() override { return tree.get(); }
    void Finish(std::ostream&) override {}

private:
    std::unique_ptr<TempFile> copy;  // outlives the tree on it
    Held<IParam> tree;
};

// Standard output: the text form as a text file has it, with the line ends
// of the stream.
class OutputPlace : public ParamPlace {
public:
    OutputPlace() : tree(new_MemParam()) {}
    IParam* Tree() override { return tree.get(); }
    void Finish(std::ostream& out) override {
        const TempFile file;
        Param_Param2IniFile(tree.get(), file.Name());
        const Held<IXFile> written(Fio_Open(file.Name(), 0));
        std::vector<char> bytes(written->GetLength());
        bytes.resize(written->Read(bytes.data(), static_cast<DWORD>(bytes.size())));
        std::string text;
        for (size_t i = 0; i < bytes.size(); ++i)
            if (bytes[i] != '\r' || i + 1 == bytes.size() || bytes[i + 1] != '\n')
                text += bytes[i];
        // The writer puts a line end in front of each section, not behind.
        if (!text.empty() && text.front() == '\n')
            text.erase(0, 1);
        out << text << '\n';
    }

private:
    Held<IParam> tree;
};

}  // namespace

std::unique_ptr<ParamPlace> OpenPlace(const std::string& name, PlaceRole role) {
    const PlaceName place = ParsePlace(name);
    try {
        switch (place.kind) {
        case PlaceKind::kText:
            return std::make_unique<TextPlace>(place.where, role);
        case PlaceKind::kProfile:
            return std::make_unique<ProfilePlace>(place.where, role);
        case PlaceKind::kOutput:
            if (role == PlaceRole::kSource)
                throw UsageError("- is standard output: it can only be copied to");
            return std::make_unique<OutputPlace>();
        case PlaceKind::kRegistry:
            return OpenRegistryPlace(place, role);
        case PlaceKind::kStorage:
            return OpenStoragePlace(place, role);
        }
        throw UsageError(name + ": no such place");
    } catch (const PlaceError& error) {
        throw std::runtime_error(name + ": " + error.what());
    } catch (const CXException& failure) {
        throw std::runtime_error(name + ": cannot be " +
                                 (role == PlaceRole::kSource ? "read" : "opened") + " (" +
                                 FailureWords(failure.code) + ")");
    }
}

}  // namespace kttool
