#include <algorithm>
#include <string>

#include "kticore/core/Exception.h"
#include "params/Held.h"
#include "params/InputBuffer.h"
#include "params/MarkedValue.h"
#include "params/ParamText.h"
#include "params/TreeWalk.h"

namespace {

using kt::params::Held;
using kt::params::NameEnum;

// The most bytes of a physical line, its closing carriage return included,
// that the reader takes in one piece with its line feed: a line of the
// reader's whole limit leaves the line feed for a read of its own, which the
// reader takes for the end of the input.
constexpr size_t kLongestLine = kt::params::kPhysicalLineLimit - 1;
// The most bytes of one value's piece: it goes with its terminator into the
// entry buffer of the form, and must come back as a line of its own at least.
constexpr size_t kLongestEntry = std::min(kt::params::kEntryBufferSize, kLongestLine) - 1;
constexpr char kLineEnd[] = "\r\n";

// The marked text of a value as the text form writes it: wide text goes as
// narrow text under the marker of text. A blob whose text would take more
// than `longest` bytes goes with no digits.
bool AppendEntryValue(std::string& entry, const tagKTVARIANT& value, size_t longest) {
    if (value.vt != KTVT_WSTR)
        return kt::params::AppendMarkedValue(entry, value, longest);
    entry += 's';
    entry += static_cast<const char*>(CXString(value.pwszVal));
    return true;
}

// Whether the reader would take the piece of a value of this name for
// another line (a comment, a directive, a section line), for more than one
// value, or for a value of another name: it cuts blanks at both ends.
bool ReadsBackAsOthers(const std::string& name) {
    return !name.empty() && (name[0] == ';' || name[0] == '#' || name[0] == '[' ||
                             name.find_first_of("=|") != std::string::npos ||
                             kt::params::IsBlank(name.front()) || kt::params::IsBlank(name.back()));
}

struct WrittenSection {
    Held<IParam> param;
    size_t pathLength = 0;  // of its path in the writer's path
};

// Writes each section's header and values on the way down. One path and
// one piece serve the whole walk. Values stand behind their header, on its
// physical line as long as that stays short enough to be read back whole,
// and on further lines of their own beyond that.
class TextWriter {
public:
    // `top` names the top section in its header, the root when it is null.
    TextWriter(IXFile* out, const char* top)
        : out(out), path(top != nullptr ? top : ""), rootOnTop(top == nullptr) {
        piece.reserve(kt::params::kEntryBufferSize);
    }

    size_t TopPathLength() const { return path.size(); }

    // The path stands at the section's own when the walk arrives.
    NameEnum* Enter(WrittenSection& section) {
        const bool isTop = path.empty() && rootOnTop;
        WriteHeader(isTop ? "\\" : path);
        // The root's child of no name has the root's header: the sections
        // below it come back, values of its own would go to the root.
        WriteValues(section.param.get(), !isTop && path == "\\");
        return section.param->EnumSections();
    }
    bool Descend(WrittenSection& parent, const char* name, WrittenSection& child) {
        child.param.Reset(parent.param->GetSection(name, 0));
        if (!child.param)
            return false;
        path.resize(parent.pathLength);
        path.append("\\").append(name);
        child.pathLength = path.size();
        return true;
    }
    void Leave(WrittenSection&) {}
    bool Done() const { return false; }

private:
    void Put(const std::string& text) { out->Write(text.data(), static_cast<DWORD>(text.size())); }

    // Refused unless it comes back as one line, and as one piece of it.
    void WriteHeader(const std::string& shown) {
        piece.assign(kLineEnd).append("[").append(shown).append("]\t");
        lineLength = piece.size() - (sizeof kLineEnd - 1);
        if (lineLength + 1 > kLongestLine || kt::params::HoldsLineEnd(shown) || shown.find('|') != std::string::npos)
            throw CXException(XE_BAD_ARGUMENT);
        Put(piece);
    }

    void WriteValues(IParam* param, bool headerIsAnothers) {
        Held<NameEnum> names(param->EnumValues());
        const char* name = nullptr;
        while (names && names->Next(1, &name, nullptr)) {
            CKTVariant value;
            if (!param->GetValue(name, &value))
                continue;
            piece.assign("\t| ").append(name).append("=");
            if (!AppendEntryValue(piece, value, kLongestEntry - std::min(piece.size(), kLongestEntry)))
                continue;
            if (piece.size() > kLongestEntry || kt::params::HoldsLineEnd(piece) || ReadsBackAsOthers(name) ||
                headerIsAnothers)
                throw CXException(XE_BAD_ARGUMENT);
            if (lineLength + piece.size() + 1 > kLongestLine) {
                Put(kLineEnd);
                lineLength = 0;
            }
            Put(piece);
            lineLength += piece.size();
        }
    }

    IXFile* out;
    std::string path;
    const bool rootOnTop;
    std::string piece;
    size_t lineLength = 0;  // bytes of the physical line being written
};

}  // namespace

void ParamText_Write(IParam* param, IXFile* out, const char* path) {
    param->AddRef();
    TextWriter writer(out, path);
    kt::params::WalkSections(WrittenSection{Held<IParam>(param), writer.TopPathLength()}, writer);
}
