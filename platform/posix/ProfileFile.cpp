// The POSIX implementation of the profile-file seam: the file is read whole
// at each call, as lines of sections and keys, and written whole through a
// new file that takes the old one's place, so that a failed write leaves the
// old file as it was. One lock serialises the calls, as the platform's
// functions serialise access to their files.
#include "platform/ProfileFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/TextConversion.h"

namespace kt::sys {

namespace {

struct Line {
    std::string name;
    std::optional<std::string> value;  // none for a line without "="
};

struct Section {
    std::string name;  // empty for the lines in front of the first section
    std::vector<Line> lines;
};

struct Profile {
    std::vector<Section> sections;  // the first holds the lines before any "[...]"
};

std::mutex& ProfileLock() {
    static std::mutex lock;
    return lock;
}

// A name or text that is there and that the platform's functions take.
bool Fits(const char* text) { return text != nullptr && std::strlen(text) <= kLongestProfileText; }

DWORD Nothing(char* buffer, DWORD size) {
    if (size > 0)
        buffer[0] = 0;
    return 0;
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

std::string Trimmed(const std::string& text) {
    size_t first = 0, last = text.size();
    while (first < last && IsBlank(text[first]))
        ++first;
    while (last > first && IsBlank(text[last - 1]))
        --last;
    return text.substr(first, last - first);
}

char AsciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool SameName(const std::string& a, const std::string& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [](char x, char y) { return AsciiLower(x) == AsciiLower(y); });
}

// The file name in the process's ANSI code page, as the file system spells it;
// a null name is one that no file has.
std::string SystemName(const char* file) {
    if (file == nullptr)
        return std::string();
    const int size = static_cast<int>(std::strlen(file));
    std::basic_string<KTWCHAR> wide(static_cast<size_t>(size), KTWCHAR{});
    wide.resize(static_cast<size_t>(
        MultiByteToWide(kAnsiCodePage, file, size, wide.data(), static_cast<int>(wide.size()))));
    std::string name(wide.size() * 3, '\0');
    name.resize(static_cast<size_t>(WideToMultiByte(kUtf8CodePage, wide.data(),
                                                    static_cast<int>(wide.size()), name.data(),
                                                    static_cast<int>(name.size()))));
    return name;
}

Profile Parse(const std::string& text) {
    Profile profile;
    profile.sections.emplace_back();
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        const std::string line = Trimmed(text.substr(start, end - start));
        start = end + 1;
        if (line.empty())
            continue;
        const size_t close = line.rfind(']');
        if (line[0] == '[' && close != std::string::npos) {
            profile.sections.push_back({Trimmed(line.substr(1, close - 1)), {}});
            continue;
        }
        const size_t equals = line.find('=');
        if (equals == std::string::npos)
            profile.sections.back().lines.push_back({line, std::nullopt});
        else
            profile.sections.back().lines.push_back(
                {Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1))});
    }
    return profile;
}

std::string Text(const Profile& profile) {
    std::string text;
    for (const Section& section : profile.sections) {
        if (&section != &profile.sections.front())
            text += "[" + section.name + "]\r\n";
        for (const Line& line : section.lines)
            text += line.value ? line.name + "=" + *line.value + "\r\n" : line.name + "\r\n";
    }
    return text;
}

// A missing or unreadable file is an empty profile.
Profile Load(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return Parse(std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()));
}

// Writes a new file beside the old one and puts it in its place.
bool Save(const std::string& name, const Profile& profile) {
    struct stat facts;
    const bool exists = stat(name.c_str(), &facts) == 0;
    if (exists && (facts.st_mode & 0222) == 0)
        return false;  // read-only, also to a privileged user
    const std::string temporary = name + ".KTPR" + std::to_string(getpid());
    const int fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (fd < 0)
        return false;
    const std::string text = Text(profile);
    bool written = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (exists)
        written = written && fchmod(fd, facts.st_mode & 07777) == 0;
    written = close(fd) == 0 && written;
    if (written && rename(temporary.c_str(), name.c_str()) == 0)
        return true;
    unlink(temporary.c_str());
    return false;
}

Section* FindSection(Profile& profile, const std::string& name) {
    for (size_t i = 1; i < profile.sections.size(); ++i)
        if (SameName(profile.sections[i].name, name))
            return &profile.sections[i];
    return name.empty() ? &profile.sections.front() : nullptr;
}

Line* FindKey(Section& section, const std::string& name) {
    for (Line& line : section.lines)
        if (line.value && SameName(line.name, name))
            return &line;
    return nullptr;
}

// A value read back loses the quotes that enclose it whole.
std::string Unquoted(const std::string& value) {
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
        value.back() == value.front())
        return value.substr(1, value.size() - 2);
    return value;
}

DWORD CopyList(const std::vector<std::string>& names, char* buffer, DWORD size) {
    if (size == 0)
        return 0;
    std::string list;
    for (const std::string& name : names)
        list.append(name).push_back('\0');
    if (list.empty() || size < 3)
        return Nothing(buffer, size);
    if (list.size() + 2 > size) {
        // Cut as the platform cuts, also a list that would just fit with its
        // final zero: the piece that fits, then two zeros.
        std::memcpy(buffer, list.data(), size - 2);
        buffer[size - 2] = buffer[size - 1] = 0;
        return size - 2;
    }
    std::memcpy(buffer, list.data(), list.size());
    buffer[list.size()] = 0;
    return static_cast<DWORD>(list.size());
}

bool Change(const char* file, bool (*edit)(Profile&, const char*, const char*, const char*),
            const char* section, const char* key, const char* text) {
    if (!Fits(section) || (key != nullptr && !Fits(key)) || (text != nullptr && !Fits(text)))
        return false;
    std::lock_guard<std::mutex> hold(ProfileLock());
    const std::string name = SystemName(file);
    Profile profile = Load(name);
    return !edit(profile, section, key, text) || Save(name, profile);
}

// The edits: each says whether the profile changed.
bool SetKey(Profile& profile, const char* sectionName, const char* keyName, const char* text) {
    const std::string name = Trimmed(sectionName);
    Section* section = FindSection(profile, name);
    if (section == nullptr) {
        profile.sections.push_back({name, {}});
        section = &profile.sections.back();
    }
    const std::string key = Trimmed(keyName);
    if (Line* line = FindKey(*section, key))
        line->value = Trimmed(text);
    else
        section->lines.push_back({key, Trimmed(text)});
    return true;
}

bool RemoveKey(Profile& profile, const char* sectionName, const char* keyName, const char*) {
    Section* section = FindSection(profile, Trimmed(sectionName));
    if (section == nullptr)
        return false;
    const std::string key = Trimmed(keyName);
    const auto found = std::find_if(section->lines.begin(), section->lines.end(),
                                    [&](const Line& line) { return line.value && SameName(line.name, key); });
    if (found == section->lines.end())
        return false;
    section->lines.erase(found);
    return true;
}

bool RemoveSection(Profile& profile, const char* sectionName, const char*, const char*) {
    Section* section = FindSection(profile, Trimmed(sectionName));
    if (section == nullptr)
        return false;
    if (section == &profile.sections.front())
        section->lines.clear();
    else
        profile.sections.erase(profile.sections.begin() + (section - profile.sections.data()));
    return true;
}

}  // namespace

DWORD ReadProfileString(const char* sectionName, const char* keyName, char* buffer, DWORD size,
                        const char* file) {
    if (!Fits(sectionName) || !Fits(keyName) || size == 0)
        return Nothing(buffer, size);
    std::lock_guard<std::mutex> hold(ProfileLock());
    Profile profile = Load(SystemName(file));
    Section* section = FindSection(profile, Trimmed(sectionName));
    const Line* line = section ? FindKey(*section, Trimmed(keyName)) : nullptr;
    if (line == nullptr)
        return Nothing(buffer, size);
    const std::string value = Unquoted(*line->value);
    const size_t count = std::min<size_t>(value.size(), size - 1);
    std::memcpy(buffer, value.data(), count);
    buffer[count] = 0;
    return static_cast<DWORD>(count);
}

DWORD ReadProfileKeyNames(const char* sectionName, char* buffer, DWORD size, const char* file) {
    if (!Fits(sectionName))
        return Nothing(buffer, size);
    std::lock_guard<std::mutex> hold(ProfileLock());
    Profile profile = Load(SystemName(file));
    std::vector<std::string> names;
    if (Section* section = FindSection(profile, Trimmed(sectionName)))
        for (const Line& line : section->lines)
            if (line.value)
                names.push_back(line.name);
    return CopyList(names, buffer, size);
}

DWORD ReadProfileSectionNames(char* buffer, DWORD size, const char* file) {
    std::lock_guard<std::mutex> hold(ProfileLock());
    Profile profile = Load(SystemName(file));
    std::vector<std::string> names;
    for (size_t i = 1; i < profile.sections.size(); ++i)
        names.push_back(profile.sections[i].name);
    return CopyList(names, buffer, size);
}

bool WriteProfileString(const char* section, const char* key, const char* text,
                        const char* file) {
    if (key == nullptr || text == nullptr)
        return false;
    return Change(file, SetKey, section, key, text);
}

bool DeleteProfileKey(const char* section, const char* key, const char* file) {
    if (key == nullptr)
        return false;
    return Change(file, RemoveKey, section, key, nullptr);
}

bool DeleteProfileSection(const char* section, const char* file) {
    return Change(file, RemoveSection, section, nullptr, nullptr);
}

}  // namespace kt::sys
