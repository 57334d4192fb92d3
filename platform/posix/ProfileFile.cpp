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
#include <mutex>
#include <optional>
#include <sstream>
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
    bool utf8 = false;              // the file began with the byte order mark
};

constexpr char kUtf8Mark[] = "\xEF\xBB\xBF";
constexpr size_t kUtf8MarkSize = sizeof kUtf8Mark - 1;
constexpr char kCommentStart = ';';

std::mutex& ProfileLock() {
    static std::mutex lock;
    return lock;
}

// A name that is there and that the platform's functions take.
bool Fits(const char* name) { return name != nullptr && std::strlen(name) <= kLongestProfileName; }

DWORD Nothing(char* buffer, DWORD size) {
    if (size > 0)
        buffer[0] = 0;
    return 0;
}

// The C locale's white space and 0x1A, the end-of-file mark of old files.
bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r') || c == '\x1a'; }

std::string LeadTrimmed(const std::string& text) {
    size_t first = 0;
    while (first < text.size() && IsBlank(text[first]))
        ++first;
    return text.substr(first);
}

std::string Trimmed(const std::string& text) {
    std::string trimmed = LeadTrimmed(text);
    while (!trimmed.empty() && IsBlank(trimmed.back()))
        trimmed.pop_back();
    return trimmed;
}

// A name or a value of the file ends at a zero byte in it.
std::string UpToZero(const std::string& text) { return text.substr(0, text.find('\0')); }

char AsciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool SameName(const std::string& a, const std::string& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [](char x, char y) { return AsciiLower(x) == AsciiLower(y); });
}

// `text` from one code page into another, through 16-bit text.
std::string Recoded(const std::string& text, unsigned from, unsigned to) {
    const int size = static_cast<int>(text.size());
    std::basic_string<KTWCHAR> wide(text.size(), KTWCHAR{});
    wide.resize(static_cast<size_t>(
        MultiByteToWide(from, text.data(), size, wide.data(), static_cast<int>(wide.size()))));
    std::string recoded(wide.size() * 3, '\0');
    recoded.resize(static_cast<size_t>(WideToMultiByte(to, wide.data(), static_cast<int>(wide.size()),
                                                       recoded.data(),
                                                       static_cast<int>(recoded.size()))));
    return recoded;
}

// An argument, ANSI text, as the file spells it, and the file's text as ANSI.
std::string Inward(const Profile& profile, const char* text) {
    return profile.utf8 ? Recoded(text, kAnsiCodePage, kUtf8CodePage) : std::string(text);
}
std::string Outward(const Profile& profile, const std::string& text) {
    return profile.utf8 ? Recoded(text, kUtf8CodePage, kAnsiCodePage) : text;
}

// Zero bytes stand in the lines as any other byte; each name and value ends
// at its first one only once the line is understood.
Profile Parse(const std::string& text) {
    Profile profile;
    profile.sections.emplace_back();
    profile.utf8 = text.compare(0, kUtf8MarkSize, kUtf8Mark) == 0;
    size_t start = profile.utf8 ? kUtf8MarkSize : 0;
    while (start < text.size()) {
        size_t end = text.find_first_of("\r\n", start);
        if (end == std::string::npos)
            end = text.size();
        const std::string line = Trimmed(text.substr(start, end - start));
        start = end + 1;
        if (line.empty())
            continue;
        const size_t close = line.rfind(']');
        if (line[0] == '[' && close != std::string::npos) {
            profile.sections.push_back({UpToZero(Trimmed(line.substr(1, close - 1))), {}});
            continue;
        }
        const size_t equals = line.find('=');
        if (equals == std::string::npos)
            profile.sections.back().lines.push_back({UpToZero(line), std::nullopt});
        else
            profile.sections.back().lines.push_back({UpToZero(Trimmed(line.substr(0, equals))),
                                                     UpToZero(Trimmed(line.substr(equals + 1)))});
    }
    return profile;
}

std::string Text(const Profile& profile) {
    std::string text = profile.utf8 ? kUtf8Mark : "";
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
    std::ostringstream text;
    if (in)
        text << in.rdbuf();
    return Parse(text.str());
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

// The arguments of an edit, as the file spells them; a key or text that is
// not there is empty.
struct Edit {
    std::string section;
    std::string key;
    std::string text;
};

bool Change(const char* file, bool (*edit)(Profile&, const Edit&), const char* section,
            const char* key, const char* text) {
    if (!Fits(section) || (key != nullptr && !Fits(key)))
        return false;
    std::lock_guard<std::mutex> hold(ProfileLock());
    const std::string name = ProfileFilePath(file);
    Profile profile = Load(name);
    const Edit arguments{Inward(profile, section), Inward(profile, key != nullptr ? key : ""),
                         Inward(profile, text != nullptr ? text : "")};
    return !edit(profile, arguments) || Save(name, profile);
}

// The edits: each says whether the profile changed. Names are looked up
// trimmed; new names and texts lose their leading blanks only.
bool SetKey(Profile& profile, const Edit& edit) {
    Section* section = FindSection(profile, Trimmed(edit.section));
    if (section == nullptr) {
        profile.sections.push_back({LeadTrimmed(edit.section), {}});
        section = &profile.sections.back();
    }
    if (Line* line = FindKey(*section, Trimmed(edit.key)))
        line->value = LeadTrimmed(edit.text);
    else
        section->lines.push_back({LeadTrimmed(edit.key), LeadTrimmed(edit.text)});
    return true;
}

bool RemoveKey(Profile& profile, const Edit& edit) {
    Section* section = FindSection(profile, Trimmed(edit.section));
    if (section == nullptr)
        return false;
    const std::string key = Trimmed(edit.key);
    const auto found = std::find_if(section->lines.begin(), section->lines.end(),
                                    [&](const Line& line) { return line.value && SameName(line.name, key); });
    if (found == section->lines.end())
        return false;
    section->lines.erase(found);
    return true;
}

bool RemoveSection(Profile& profile, const Edit& edit) {
    Section* section = FindSection(profile, Trimmed(edit.section));
    if (section == nullptr)
        return false;
    if (section == &profile.sections.front())
        section->lines.clear();
    else
        profile.sections.erase(profile.sections.begin() + (section - profile.sections.data()));
    return true;
}

}  // namespace

// The name in the process's ANSI code page, as the file system spells it; a
// null name is one that no file has.
std::string ProfileFilePath(const char* file) {
    if (file == nullptr || IsBareFileName(file))
        return std::string();
    return Recoded(file, kAnsiCodePage, kUtf8CodePage);
}

DWORD ReadProfileString(const char* sectionName, const char* keyName, char* buffer, DWORD size,
                        const char* file) {
    if (!Fits(sectionName) || !Fits(keyName) || size == 0)
        return Nothing(buffer, size);
    std::lock_guard<std::mutex> hold(ProfileLock());
    Profile profile = Load(ProfileFilePath(file));
    Section* section = FindSection(profile, Trimmed(Inward(profile, sectionName)));
    const Line* line = section ? FindKey(*section, Trimmed(Inward(profile, keyName))) : nullptr;
    if (line == nullptr)
        return Nothing(buffer, size);
    const std::string value = Outward(profile, Unquoted(*line->value));
    const size_t count = std::min<size_t>(value.size(), size - 1);
    std::memcpy(buffer, value.data(), count);
    buffer[count] = 0;
    return static_cast<DWORD>(count);
}

DWORD ReadProfileKeyNames(const char* sectionName, char* buffer, DWORD size, const char* file) {
    if (!Fits(sectionName))
        return Nothing(buffer, size);
    std::lock_guard<std::mutex> hold(ProfileLock());
    Profile profile = Load(ProfileFilePath(file));
    std::vector<std::string> names;
    if (Section* section = FindSection(profile, Trimmed(Inward(profile, sectionName))))
        for (const Line& line : section->lines)
            if (line.value && line.name[0] != kCommentStart)
                names.push_back(Outward(profile, line.name));
    return CopyList(names, buffer, size);
}

DWORD ReadProfileSectionNames(char* buffer, DWORD size, const char* file) {
    std::lock_guard<std::mutex> hold(ProfileLock());
    Profile profile = Load(ProfileFilePath(file));
    std::vector<std::string> names;
    for (size_t i = 1; i < profile.sections.size(); ++i)
        names.push_back(Outward(profile, profile.sections[i].name));
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
