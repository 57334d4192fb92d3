// The stream form of a tree: for each sub-section its name and its own form,
// an empty name; for each value its name and the stored variant, an empty
// name. No header, no lengths. Both directions walk the tree with a work list
// of their own rather than by recursion, so that a tree of any depth goes
// with a flat stack.
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "kticore/core/Exception.h"
#include "kticore/objects/Persist.h"
#include "kticore/params/ParamTools.h"
#include "params/Held.h"

namespace {

using kt::params::Held;
using kt::params::HoldAnother;
using NameEnum = CTEnum<const char*>;

// A name is read back with this limit, terminator included, and ends at a
// zero byte or a line feed.
constexpr int kNameLimit = 1024;
// A memory stream's ReadLine writes up to two bytes behind the limit.
constexpr int kNameBufferSize = kNameLimit + 2;

// A stored object's class name is read back as a line with this limit,
// terminator included, and must not be empty.
constexpr int kClassNameLimit = 260;

// Whether a text read back as a line of at most `limit` bytes comes back whole.
bool FitsLine(const char* text, int limit) {
    return std::strlen(text) < static_cast<size_t>(limit - 1) && std::strchr(text, '\n') == nullptr;
}

// A name that would read back as another is refused: the empty name would
// end its list, and one too long or with a line feed would be cut.
void WriteName(IXStream* stream, const char* name) {
    if (name == nullptr || *name == 0 || !FitsLine(name, kNameLimit))
        throw CXException(XE_BAD_ARGUMENT);
    stream->WriteString(name);
}

// An object read under a class name that ended at a line feed or at the
// limit (a proxy keeps such a name) would be written back under a name that
// reads differently, and all behind it would be read from the wrong place.
void CheckStorable(const CKTVariant& value) {
    if (value.vt != KTVT_OBJECT || value.punkVal == nullptr)
        return;
    IPersistXStream* persist = nullptr;
    value.punkVal->QueryInterface(typeid(IPersistXStream), reinterpret_cast<void**>(&persist));
    const Held<IPersistXStream> held(persist);
    if (persist == nullptr)
        return;  // written as no object
    const char* className = persist->GetClassName();
    if (*className == 0 || !FitsLine(className, kClassNameLimit))
        throw CXException(XE_BAD_ARGUMENT);
}

// Walks the levels of a tree from `top` down with a work list. `advance`
// goes on with the innermost level: true when it has filled `below` with the
// level to go into next, false when its own level is done. Whatever escapes
// it ends that level alone: `fail`, called in the handler, rethrows what it
// does not take and otherwise gives the level's result. The walk's result
// is that of the top level.
template <class Level, class Advance, class Fail>
int WalkLevels(Level top, Advance advance, Fail fail) {
    std::vector<Level> levels;
    levels.push_back(std::move(top));
    int result = 1;
    while (!levels.empty()) {
        try {
            Level below;
            if (advance(levels.back(), below)) {
                levels.push_back(std::move(below));
                continue;
            }
        } catch (...) {
            const int failed = fail(levels.back());
            if (levels.size() == 1)
                result = failed;
        }
        levels.pop_back();
    }
    return result;
}

struct SavedSection {
    SavedSection() = default;
    explicit SavedSection(IParam* top) : param(HoldAnother(top)) {}

    Held<IParam> param;  // null for a section that was listed but not found
    Held<NameEnum> sections;
    bool begun = false;
};

void WriteValues(IXStream* stream, IParam* param) {
    Held<NameEnum> values(param != nullptr ? param->EnumValues() : nullptr);
    const char* name = nullptr;
    while (values && values->Next(1, &name, nullptr)) {
        WriteName(stream, name);
        CKTVariant value;  // stays empty for a value that is not found
        param->GetValue(name, &value);
        CheckStorable(value);
        stream->WriteVariant(&value);
    }
}

// Writes the form of `level` on: up to the name of its next sub-section,
// which goes into `below`, or to its end.
bool WriteUpToNextSection(IXStream* stream, SavedSection& level, SavedSection& below) {
    IParam* param = level.param.get();
    if (!level.begun) {
        level.begun = true;
        level.sections.Reset(param != nullptr ? param->EnumSections() : nullptr);
    }
    const char* name = nullptr;
    while (level.sections && level.sections->Next(1, &name, nullptr)) {
        if (name == nullptr || *name == 0)
            continue;  // left out, with all below it
        WriteName(stream, name);
        below.param.Reset(param->GetSection(name, 0));
        return true;
    }
    stream->WriteString("");
    WriteValues(stream, param);
    stream->WriteString("");
    return false;
}

void Empty(IParam* param) {
    if (param == nullptr)
        return;
    param->DeleteAllSections();
    param->DeleteAllValues();
}

struct LoadedSection {
    LoadedSection() = default;
    explicit LoadedSection(IParam* top) : param(HoldAnother(top)) {}

    // Null for a section the tree could not make: its form is read into
    // nothing, so that what follows it is read in its place.
    Held<IParam> param;
    bool begun = false;
    unsigned length = 0;
    bool readingValues = false;
};

// The next name of a list into `name`; false at its end, the empty name, or
// at the end of the stream.
bool ReadName(IXStream* stream, unsigned length, char* name) {
    return stream->GetPosition() < length && stream->ReadLine(name, kNameLimit) >= 2;
}

// Reads the form of `level` on: up to its next sub-section, which it makes
// and puts into `below`, or to its end.
bool ReadUpToNextSection(IXStream* stream, char* name, LoadedSection& level, LoadedSection& below) {
    IParam* param = level.param.get();
    if (!level.begun) {
        level.begun = true;
        Empty(param);
        level.length = stream->GetLength();
    }
    if (!level.readingValues) {
        if (ReadName(stream, level.length, name)) {
            below.param.Reset(param != nullptr ? param->CreateSection(name) : nullptr);
            return true;
        }
        level.readingValues = true;
    }
    while (ReadName(stream, level.length, name)) {
        CKTVariant value;
        stream->ReadVariant(&value);
        if (param != nullptr)
            param->SetValue(name, &value);
    }
    return false;
}

}  // namespace

int SaveParamToXStream(IXStream* stream, IParam* param) {
    auto advance = [stream](SavedSection& level, SavedSection& below) {
        return WriteUpToNextSection(stream, level, below);
    };
    auto fail = [](SavedSection&) {
        try {
            throw;
        } catch (const CXFileException&) {
            return 0;
        }
    };
    return WalkLevels(SavedSection(param), advance, fail);
}

int LoadParamFromXStream(IXStream* stream, IParam* param) {
    const auto name = std::make_unique<char[]>(kNameBufferSize);
    auto advance = [stream, &name](LoadedSection& level, LoadedSection& below) {
        return ReadUpToNextSection(stream, name.get(), level, below);
    };
    auto fail = [](LoadedSection& level) {
        try {
            throw;
        } catch (const CXEofException&) {
            return 1;  // a cut stream: what has been read stays
        } catch (const CXMemException&) {
            throw;
        } catch (const CXException&) {
            // A failing stream or tree, or stored data that does not hold
            // together (an object longer than what is left of the stream).
            try {
                Empty(level.param.get());
            } catch (const CXFileException&) {
                // The level has failed already; what is left of it stays.
            }
            return 0;
        }
    };
    return WalkLevels(LoadedSection(param), advance, fail);
}
