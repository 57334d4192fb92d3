// A place of a parameter tree as the command line names it, taken apart.
#pragma once

#include <stdexcept>
#include <string>

namespace kttool {

enum class PlaceKind {
    kText,      // text:FILE
    kProfile,   // ini:FILE
    kRegistry,  // reg:HIVE\KEY
    kStorage,   // stor:FILE or stor:FILE:PATH
    kOutput,    // -
};

struct PlaceName {
    PlaceKind kind;
    // The file, or for the registry the hive: "HKCU" or "HKLM".
    std::string where;
    // The key below the hive, or the storage path in the file (empty for
    // its root); sections are joined by `\`.
    std::string inside;
};

// What is wrong with a place; the message goes behind the place's name.
class PlaceError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Throws UsageError for a name that is no place.
PlaceName ParsePlace(const std::string& name);

// Whether writing `b` can change what `a` holds, or the reverse: the same
// file under the same back end (full paths, case folded as Windows folds
// them), or registry keys of which one is the other or lies below it.
bool Overlap(const PlaceName& a, const PlaceName& b);

}  // namespace kttool
