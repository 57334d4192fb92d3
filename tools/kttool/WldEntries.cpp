#include "tools/kttool/WldEntries.h"

#include <algorithm>
#include <memory>

#include "kticore/core/Exception.h"
#include "kticore/files/File.h"
#include "kticore/strings/XStringW.h"
#include "tools/kttool/ModuleTexts.h"
#include "translation/WldReader.h"

namespace kttool {
namespace {

// Line numbers of file positions: a line starts at 0 and behind each LF.
class LineIndex {
public:
    explicit LineIndex(const Bytes& bytes) {
        starts.push_back(0);
        for (size_t i = 0; i < bytes.size(); ++i)
            if (bytes[i] == '\n')
                starts.push_back(i + 1);
    }
    unsigned LineOf(size_t position) const {
        return static_cast<unsigned>(std::upper_bound(starts.begin(), starts.end(), position) -
                                     starts.begin());
    }

private:
    std::vector<size_t> starts;
};

struct FileReleaser {
    void operator()(IXFile* file) const { file->Release(); }
};

}  // namespace

WldEntries ReadWldEntries(const std::string& path) {
    const LineIndex lines(ReadWholeFile(path));
    WldEntries read;
    try {
        std::unique_ptr<IXFile, FileReleaser> file(Fio_Open(CXStringW(path.c_str()), 0));
        if (!file)
            throw std::runtime_error(path + ": cannot be opened");
        kt::WldReader reader(file.get());
        CXString key;
        CXString value;
        while (reader.Next(key, value)) {
            WldEntry entry;
            entry.key = static_cast<const char*>(key);
            entry.value = static_cast<const char*>(value);
            entry.keyLine = lines.LineOf(reader.KeyLineStart());
            entry.valueLine = lines.LineOf(reader.ValueLineStart());
            read.entries.push_back(std::move(entry));
        }
        read.languageId = reader.LanguageId();
    } catch (const CXFileException&) {
        throw std::runtime_error(path + ": cannot be read");
    }
    return read;
}

}  // namespace kttool
