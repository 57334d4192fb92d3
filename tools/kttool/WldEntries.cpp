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

// The lines of a file without their line ends.
std::vector<std::string> LinesOf(const Bytes& bytes) {
    std::vector<std::string> lines(1);
    for (const std::uint8_t byte : bytes) {
        if (byte == '\n')
            lines.emplace_back();
        else
            lines.back() += static_cast<char>(byte);
    }
    return lines;
}

bool HoldsString(const std::string& line) {
    const size_t start = line.find_first_not_of(" \t\r");
    return start != std::string::npos && line[start] == '"' &&
           line.find_last_not_of(" \t\r") > start;
}

// The empty line behind the last pair that ends the dictionary, when a
// quoted string stands behind it.
unsigned EndingLine(const Bytes& bytes, const std::vector<WldEntry>& entries) {
    const std::vector<std::string> lines = LinesOf(bytes);
    size_t next = 0;  // index of the first line behind the last pair
    if (!entries.empty()) {
        const WldEntry& last = entries.back();
        next = last.valueLine;
        // A key without a value took the empty line behind it as its end.
        if (last.keyLine == last.valueLine && next < lines.size() && lines[next].empty())
            ++next;
    }
    while (next < lines.size() && !lines[next].empty())
        ++next;
    for (size_t behind = next + 1; behind < lines.size(); ++behind)
        if (HoldsString(lines[behind]))
            return static_cast<unsigned>(next + 1);
    return 0;
}

struct FileReleaser {
    void operator()(IXFile* file) const { file->Release(); }
};

}  // namespace

WldEntries ReadWldEntries(const std::string& path) {
    const Bytes bytes = ReadWholeFile(path);
    if (std::find(bytes.begin(), bytes.end(), 0) != bytes.end())
        throw std::runtime_error(path + ": holds NUL bytes: not a dictionary's text");
    const LineIndex lines(bytes);
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
            entry.isLanguage = reader.IsLanguageKey();
            read.entries.push_back(std::move(entry));
        }
        read.languageId = reader.LanguageId();
    } catch (const CXFileException&) {
        throw std::runtime_error(path + ": cannot be read");
    }
    read.endingLine = EndingLine(bytes, read.entries);
    if (read.entries.empty() && !bytes.empty())
        throw std::runtime_error(
            path + (read.endingLine != 0 ? ": the empty line " + std::to_string(read.endingLine) +
                                               " ends the dictionary before its first entry"
                                         : ": holds no quoted entry: not a dictionary's text"));
    return read;
}

}  // namespace kttool
