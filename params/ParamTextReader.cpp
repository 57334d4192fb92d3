#include <cstring>
#include <memory>
#include <vector>

#include "kticore/core/Exception.h"
#include "kticore/strings/XStringW.h"
#include "params/Held.h"
#include "params/InputBuffer.h"
#include "params/MarkedValue.h"
#include "params/ParamText.h"
#include "params/ValuePath.h"

namespace {

using kt::params::CInputBuffer;
using kt::params::Held;
using kt::params::IsBlank;

// Inputs open at once, the top file included. A file that includes itself
// meets this limit, and its deepest include is one that cannot be opened.
constexpr size_t kIncludeDepthLimit = 32;
// Includes opened in one reading. A file that includes itself twice would
// otherwise be read 2^32 times before the depth stopped it.
constexpr size_t kIncludeCountLimit = 1024;

// What a value line without `=` stores: the integer 0.
constexpr int kBareNameValue = 0;

// The directory of a file name with its delimiter: the name cut behind its
// last `\`, or if it has none behind its last `/`; empty with neither.
CXStringW DirectoryOf(const KTWCHAR* name) {
    CXStringW directory(name);
    int cut = directory.FindRev('\\');
    if (cut < 0)
        cut = directory.FindRev('/');
    const int kept = cut + 1;
    directory.Delete(kept, static_cast<int>(directory.GetLength()) - kept);
    return directory;
}

IXFile* TryOpen(const CXStringW& name) {
    try {
        return Fio_Open(name, 0);
    } catch (const CXException&) {
        return nullptr;
    }
}

class TextReader {
public:
    TextReader(IXFile* in, IParam* root) : root(root), baseDirectory(DirectoryOf(in->GetName())) {
        inputs.push_back(std::make_unique<CInputBuffer>(in, input, scan));
    }

    void Run() {
        while (!inputs.empty()) {
            const int length = inputs.back()->ReadLine(line, kt::params::kPhysicalLineLimit);
            if (length == 0)
                inputs.pop_back();
            else
                Take(line, line + length);
        }
    }

private:
    // One logical line, [begin, end), trimmed first.
    void Take(char* begin, char* end) {
        while (begin < end && IsBlank(*begin))
            ++begin;
        while (end > begin && IsBlank(end[-1]))
            --end;
        *end = 0;
        if (*begin == ';' || end - begin <= 1)
            return;
        if (*begin == '#' && Directive(begin + 1))
            return;
        if (*begin == '[')
            SectionLine(begin + 1, end);
        else if (current)
            ValueLine(begin, end);
    }

    // False when the line is not a directive after all.
    bool Directive(char* text) {
        while (IsBlank(*text))
            ++text;
        char* name = text;
        while (*text != 0 && !IsBlank(*text))
            ++text;
        const size_t nameLength = static_cast<size_t>(text - name);
        while (IsBlank(*text))
            ++text;
        char* argument = text;
        while (*text != 0 && !IsBlank(*text))
            ++text;
        *text = 0;
        if (nameLength <= 1 && *argument == 0)
            return false;
        if (nameLength == 7 && CompareIncludeName(name))
            Include(argument);
        return true;
    }

    static bool CompareIncludeName(const char* name) {
        static const char kInclude[] = "include";
        for (int i = 0; i < 7; ++i)
            if ((name[i] | 0x20) != kInclude[i])
                return false;
        return true;
    }

    // The character after `[` is skipped, whatever it is; a last `]` is cut.
    void SectionLine(char* text, char* end) {
        if (end > text && end[-1] == ']')
            *--end = 0;
        if (text < end)
            ++text;
        current.Reset(root);
        root->AddRef();
        if (text == end)
            return;
        // Every `\` splits, a last one too: it leaves a part with an empty name.
        for (bool more = true; more && current;) {
            char* part = text;
            while (text < end && *text != '\\')
                text = const_cast<char*>(scan.NextChar(text, end));
            more = text < end;
            *text++ = 0;
            current.Reset(current->GetSection(part, 1));
        }
    }

    void ValueLine(char* begin, char* end) {
        char* equals = std::strchr(begin, '=');
        if (equals == nullptr) {
            Store(begin, CKTVariant(kBareNameValue));
            return;
        }
        char* nameEnd = equals;
        while (nameEnd > begin && IsBlank(nameEnd[-1]))
            --nameEnd;
        *nameEnd = 0;
        char* text = equals + 1;
        while (text < end && IsBlank(*text))
            ++text;
        CKTVariant value;
        if (*text != 0 && kt::params::ReadMarkedValue(text, value))
            Store(begin, value);
    }

    // A path that does not fit the form's buffer is skipped like a value
    // that does not parse.
    void Store(const char* name, const CKTVariant& value) {
        if (kt::params::ValuePath(name).Fits())
            current->SetValue(name, &value);
    }

    void Include(char* path) {
        if (*path == '"')
            ++path;
        const size_t length = std::strlen(path);
        if (length != 0 && path[length - 1] == '"')
            path[length - 1] = 0;
        if (inputs.size() >= kIncludeDepthLimit || includesOpened >= kIncludeCountLimit)
            return;
        CXStringW name(path);
        if (*path == '.')
            name = DirectoryOf(inputs.back()->File()->GetName()) + name;
        IXFile* file = TryOpen(name);
        if (IXFile* fromBase = TryOpen(baseDirectory + name)) {
            if (file != nullptr)
                file->Release();
            file = fromBase;
        }
        if (file == nullptr)
            return;
        ++includesOpened;
        inputs.back()->DropPhysicalLine();
        inputs.push_back(std::make_unique<CInputBuffer>(file, input, scan));
        file->Release();
    }

    IParam* root;
    Held<IParam> current;
    const CXStringW baseDirectory;
    const kt::params::TextScan scan;
    kt::params::InputArea input;
    char line[kt::params::kLineBufferSize];
    std::vector<std::unique_ptr<CInputBuffer>> inputs;
    size_t includesOpened = 0;
};

}  // namespace

int ParamText_Read(IXFile* in, IParam* root) {
    if (in == nullptr || root == nullptr)
        return 0;
    std::make_unique<TextReader>(in, root)->Run();
    return 1;
}
