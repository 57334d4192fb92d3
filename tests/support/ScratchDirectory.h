// A directory of a test's own under the system's temporary directory, removed
// with everything in it when the test ends; and wide names inside it.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "kticore/files/FileUtilities.h"
#include "tests/support/WideText.h"

namespace kt::test {

class ScratchDirectory {
public:
    ScratchDirectory() {
        path = Wide(Fio_GetTempFileName());
        Fio_DeleteFile(path.c_str());
        Fio_CreateDirectory(path.c_str());
    }
    ~ScratchDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(std::filesystem::path(path), ignored);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    // A name inside the directory.
    WideString operator/(const WideString& leaf) const { return path + KTW("/") + leaf; }
    const WideString& Path() const { return path; }

    // The names of the files in the directory.
    std::vector<WideString> Entries() const {
        std::vector<WideString> names;
        for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(path)))
            names.push_back(Wide(entry.path().filename()));
        return names;
    }

private:
    static WideString Wide(const std::filesystem::path& p) {
        const auto units = p.generic_u16string();
        return WideString(units.begin(), units.end());
    }

    WideString path;
};

// The whole content of a file, read through the library.
inline std::string ContentOf(const WideString& name) {
    IXFile* file = Fio_Open(name.c_str(), 0);
    std::string content(file->GetLength(), '\0');
    if (!content.empty())
        file->Read(content.data(), static_cast<DWORD>(content.size()));
    file->Release();
    return content;
}

// Writes `content` to `name` directly, replacing what was there.
inline void WriteContent(const WideString& name, const std::string& content) {
    IXFile* file = Fio_Open(name.c_str(), FIO_WRITE);
    if (!content.empty())
        file->Write(content.data(), static_cast<DWORD>(content.size()));
    file->Release();
}

// The code and operation of the CXFileException that `action` throws.
struct FileFailure {
    DWORD code = XE_NONE;
    DWORD operation = 0xFFFFFFFF;
    WideString name;
    bool operator==(const FileFailure& other) const {
        return code == other.code && operation == other.operation && name == other.name;
    }
};

inline std::ostream& operator<<(std::ostream& out, const FileFailure& failure) {
    return out << "code " << failure.code << ", operation " << failure.operation << ", name of "
               << failure.name.size() << " units";
}

template <class Action>
FileFailure FileFailureOf(Action&& action) {
    try {
        action();
    } catch (const CXFileException& failure) {
        return {failure.code, failure.operation, Wide(failure.name)};
    }
    ADD_FAILURE() << "no CXFileException was thrown";
    return {};
}

// The code of a CXException that is no file's failure.
template <class Action>
DWORD PlainFailureOf(Action&& action) {
    try {
        action();
    } catch (const CXFileException&) {
        ADD_FAILURE() << "a CXFileException was thrown";
        return XE_NONE;
    } catch (const CXException& failure) {
        return failure.code;
    }
    ADD_FAILURE() << "no CXException was thrown";
    return XE_NONE;
}

}  // namespace kt::test
