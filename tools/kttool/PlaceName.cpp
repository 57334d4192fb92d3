#include "tools/kttool/PlaceName.h"

#include <cctype>
#include <cwctype>
#include <filesystem>

#include "tools/kttool/CommandLine.h"

namespace kttool {
namespace {

constexpr char kPlaces[] =
    "text:FILE, ini:FILE, reg:HKCU\\KEY, reg:HKLM\\KEY, stor:FILE[:PATH] or -";

bool StartsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

bool SameLetters(const std::string& a, const char* b) {
    const std::string other = b;
    if (a.size() != other.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (std::toupper(static_cast<unsigned char>(a[i])) != other[i])
            return false;
    return true;
}

// "HKCU" or "HKLM" for the names of the two hives, empty for anything else.
std::string HiveOf(const std::string& name) {
    if (SameLetters(name, "HKCU") || SameLetters(name, "HKEY_CURRENT_USER"))
        return "HKCU";
    if (SameLetters(name, "HKLM") || SameLetters(name, "HKEY_LOCAL_MACHINE"))
        return "HKLM";
    return "";
}

PlaceName Registry(const std::string& name, const std::string& rest) {
    const size_t slash = rest.find('\\');
    const std::string hive = HiveOf(rest.substr(0, slash));
    if (hive.empty())
        throw UsageError("\"" + name + "\": the registry place begins with HKCU\\ or HKLM\\");
    if (slash == std::string::npos || slash + 1 == rest.size())
        throw UsageError("\"" + name + "\": a key below the hive is needed");
    return {PlaceKind::kRegistry, hive, rest.substr(slash + 1)};
}

// The file ends at the first ':' behind a drive's letter and colon.
PlaceName Storage(const std::string& rest) {
    const bool drive =
        rest.size() >= 2 && std::isalpha(static_cast<unsigned char>(rest[0])) && rest[1] == ':';
    const size_t colon = rest.find(':', drive ? 2 : 0);
    if (colon == std::string::npos)
        return {PlaceKind::kStorage, rest, ""};
    return {PlaceKind::kStorage, rest.substr(0, colon), rest.substr(colon + 1)};
}

// The file's full path, case folded: the same file however it is named.
std::filesystem::path::string_type FoldedFullPath(const std::string& file) {
    auto full = std::filesystem::absolute(file).lexically_normal().native();
    for (auto& unit : full)
        unit = static_cast<std::filesystem::path::value_type>(
            std::towupper(static_cast<wint_t>(unit)));
    return full;
}

// The key with its case folded and without trailing `\`, ending in one.
std::string FoldedKey(const std::string& key) {
    std::string folded = key.substr(0, key.find_last_not_of('\\') + 1);
    for (char& letter : folded)
        letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    return folded + '\\';
}

}  // namespace

bool Overlap(const PlaceName& a, const PlaceName& b) {
    if (a.kind != b.kind)
        return false;
    switch (a.kind) {
    case PlaceKind::kText:
    case PlaceKind::kProfile:
    case PlaceKind::kStorage:
        return FoldedFullPath(a.where) == FoldedFullPath(b.where);
    case PlaceKind::kRegistry: {
        if (a.where != b.where)
            return false;
        const std::string first = FoldedKey(a.inside);
        const std::string second = FoldedKey(b.inside);
        return StartsWith(first, second) || StartsWith(second, first);
    }
    case PlaceKind::kOutput:
        return false;
    }
    return false;
}

PlaceName ParsePlace(const std::string& name) {
    if (name == "-")
        return {PlaceKind::kOutput, "", ""};
    PlaceName place;
    if (StartsWith(name, "text:"))
        place = {PlaceKind::kText, name.substr(5), ""};
    else if (StartsWith(name, "ini:"))
        place = {PlaceKind::kProfile, name.substr(4), ""};
    else if (StartsWith(name, "reg:"))
        place = Registry(name, name.substr(4));
    else if (StartsWith(name, "stor:"))
        place = Storage(name.substr(5));
    else
        throw UsageError("\"" + name + "\" is no place: name it as " + kPlaces);
    if (place.where.empty())
        throw UsageError("\"" + name + "\": the file is missing");
    return place;
}

}  // namespace kttool
