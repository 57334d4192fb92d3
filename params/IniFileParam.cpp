#include "params/IniFileParam.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "kticore/core/Exception.h"
#include "kticore/files/FileUtilities.h"
#include "kticore/params/IniFileParam.h"
#include "kticore/strings/XString.h"
#include "kticore/strings/XStringW.h"
#include "params/BackEndRules.h"
#include "params/Held.h"
#include "params/MarkedValue.h"
#include "params/NameCompare.h"
#include "params/ValuePath.h"
#include "platform/ProfileFile.h"

namespace kt::params {
namespace {

const BackEndRules& kRules = kProfileFile;

constexpr char kRootSection[] = "\\";
constexpr char kMarkerKey[] = "@";
constexpr char kEmptyValue[] = "e";  // the marked text of an empty variant
// Bytes of every read from the file: values and listings are cut to it.
constexpr DWORD kReadBuffer = 64000;
// Bytes of a full section name or a child's name, terminator included.
constexpr size_t kSectionNameBuffer = 512;

// The platform trims names at both ends: a name of blanks only is no name,
// and a name of no name would end a zero-terminated listing early. Its blanks
// are those of the C locale and 0x1A.
bool IsBlankOnly(const std::string& text) {
    return text.find_first_not_of(" \t\n\v\f\r\x1a") == std::string::npos;
}

// What the file can hold as the name of a key: no "=", which would end it, no
// line end, no start that reads as a section or a comment, and some name.
bool FitsKeyName(const char* name) {
    const std::string text(name);
    return text.find('=') == std::string::npos && !HoldsLineEnd(text) && text[0] != '[' &&
           text[0] != ';' && !IsBlankOnly(text) && text.size() <= sys::kLongestProfileText;
}

// Below the root every piece between the separators needs a name too.
bool FitsSectionName(const std::string& name) {
    if (name.size() >= kSectionNameBuffer || HoldsLineEnd(name))
        return false;
    if (name == kRootSection)
        return true;
    for (size_t start = 1;;) {
        const size_t end = std::min(name.find('\\', start), name.size());
        if (IsBlankOnly(name.substr(start, end - start)))
            return false;
        if (end == name.size())
            return true;
        start = end + 1;
    }
}

// The names of a listing as a block of zero-terminated names ending with an
// empty one. The platform answers a list that just fits as one it had to cut,
// but only a cut list ends without its zero, in a piece of a name: it goes.
// A name of no name, from another program's file, would end the block: it
// goes too.
std::string ListedNames(const std::vector<char>& buffer, DWORD length) {
    std::string names;
    for (DWORD start = 0, end = 0; end < length; ++end) {
        if (buffer[end] != 0)
            continue;
        if (end > start)
            names.append(buffer.data() + start, end - start + 1);
        start = end + 1;
    }
    names.push_back('\0');
    return names;
}

CTEnum<const char*>* NewEnumerator(const std::string& block, IParam* owner) {
    return new _CZeroDelimitedStringsEnum<char>(block.data(), owner);
}

}  // namespace

CIniFileParam::CIniFileParam(const char* file, const char* baseSection, const char* path,
                             IParam* parent)
    : file(file) {
    section = baseSection;
    if (path != nullptr) {
        if (section != kRootSection)
            section += '\\';
        section += path;
    }
    if (!FitsSectionName(section))
        throw CXException(XE_BAD_ARGUMENT);
    registered.Register(static_cast<IRegisterIface*>(this), typeid(IRegisterIface), 0);

    // A section without keys does not exist for the file: the marker key
    // makes this one.
    char probe[2];
    if (sys::ReadProfileString(section.c_str(), kMarkerKey, probe, sizeof probe, file) == 0) {
        Fio_CreateDirectory(CXStringW(file).FilePath());
        sys::WriteProfileString(section.c_str(), kMarkerKey, kEmptyValue, file);
    }
    sectionLength = static_cast<int>(section.size());
    isRoot = section == kRootSection;
    SetParent(parent);  // last: a failure above leaves no reference behind
}

CIniFileParam::~CIniFileParam() { SetParent(nullptr); }

ULONG CIniFileParam::Release() {
    if (--refCount != 0)
        return refCount;
    delete this;
    return 0;
}

int CIniFileParam::QueryInterface(const type_info& type, void** out) { return registered.Answer(type, out); }

int CIniFileParam::RegisterInterface(IKTUnknown* object, const type_info& type, int addRef) {
    return registered.Register(object, type, addRef);
}

void CIniFileParam::SetParent(IParam* next) {
    if (next == parent)
        return;
    if (next != nullptr)
        next->AddRef();
    if (parent != nullptr)
        parent->Release();
    parent = next;
}

IParam* CIniFileParam::GetParent() {
    if (parent != nullptr)
        parent->AddRef();
    return parent;
}

std::string CIniFileParam::SectionBelow(const char* path) const {
    return (isRoot ? section : section + '\\') + (path != nullptr ? path : "");
}

IParam* CIniFileParam::OpenBelow(const char* path) {
    return new CIniFileParam(file.c_str(), section.c_str(), path != nullptr ? path : "", this);
}

IParam* CIniFileParam::CreateSection(const char* path) {
    DeleteSection(path);
    return OpenBelow(path);
}

IParam* CIniFileParam::GetSection(const char* path, int create) {
    const std::string name = SectionBelow(path);
    std::vector<char> keys(kReadBuffer);
    if (!FitsSectionName(name) ||
        sys::ReadProfileKeyNames(name.c_str(), keys.data(), kReadBuffer, file.c_str()) == 0)
        return create != 0 ? OpenBelow(path) : nullptr;  // sections below it stay
    return OpenBelow(path);
}

// A section that has only sections below it in the file, and no keys of its
// own, is still listed as a child: it is opened for its removal, so that
// nothing below a deleted or cleared section stays behind.
void CIniFileParam::DeleteSection(const char* path) {
    Held<IParam> found(GetSection(path, 0));
    if (!found && HasSectionsBelow(SectionBelow(path)))
        found.Reset(OpenBelow(path));
    if (found)
        found->Clear();
}

void CIniFileParam::DeleteAllSections() {
    Held<CTEnum<const char*>> names(EnumSections());
    const char* name = nullptr;
    while (names->Next(1, &name, nullptr))
        DeleteSection(name);
}

std::string CIniFileParam::AllSectionNames() const {
    std::vector<char> buffer(kReadBuffer);
    return ListedNames(buffer, sys::ReadProfileSectionNames(buffer.data(), kReadBuffer, file.c_str()));
}

bool CIniFileParam::HasSectionsBelow(const std::string& name) const {
    const std::string all = AllSectionNames();
    for (const char* listed = all.data(); *listed != 0; listed += std::strlen(listed) + 1)
        if (std::strlen(listed) > name.size() && listed[name.size()] == '\\' &&
            CompareNoCase(std::string(listed, name.size()).c_str(), name.c_str()) == 0)
            return true;
    return false;
}

int CIniFileParam::GetValue(const char* path, tagKTVARIANT* value) {
    const ValuePath split(path);
    if (split.HasSection()) {
        if (!split.Fits())
            return 0;
        Held<IParam> below(GetSection(split.Section(), 0));
        return below ? below->GetValue(split.Name(), value) : 0;
    }
    std::vector<char> text(kReadBuffer);
    const DWORD length = sys::ReadProfileString(section.c_str(), ValueName(kRules, path), text.data(),
                                                kReadBuffer, file.c_str());
    KTVariantClear(value);
    CKTVariant read;
    if (length == 0 || !ReadMarkedValue(text.data(), read))
        return 0;
    KTVariantCopy(value, &read);
    return 1;
}

// What the file has no form for is dropped without a word, as objects and
// wide text are: a section or a key name it cannot hold, a text with a line
// end or longer than the platform takes, a blob longer than the text form
// writes. A path beyond its buffer is refused, as in every back end.
void CIniFileParam::SetValue(const char* path, const tagKTVARIANT* value) {
    const ValuePath split(path);
    if (split.HasSection()) {
        if (!split.Fits())
            throw CXException(XE_BAD_ARGUMENT);
        if (!FitsSectionName(SectionBelow(split.Section())))
            return;
        Held<IParam> below(GetSection(split.Section(), 1));
        below->SetValue(split.Name(), value);
        return;
    }
    if (value == nullptr || !Stores(kRules, value->vt))
        return;
    std::string text;
    if (!AppendMarkedValue(text, *value))
        return;
    const char* name = ValueName(kRules, path);
    // A blob too long for the text form is written without digits.
    const bool wholeBlob = value->vt != KTVT_BLOB || text.size() == 1 + 2 * size_t{value->blobVal.size};
    if (!FitsKeyName(name) || HoldsLineEnd(text) || text.size() > sys::kLongestProfileText ||
        !wholeBlob)
        return;
    sys::WriteProfileString(section.c_str(), name, text.c_str(), file.c_str());
}

void CIniFileParam::DeleteValue(const char* name) {
    sys::DeleteProfileKey(section.c_str(), name, file.c_str());
}

void CIniFileParam::DeleteAllValues() {
    Held<CTEnum<const char*>> names(EnumValues());
    const char* name = nullptr;
    while (names->Next(1, &name, nullptr))
        DeleteValue(name);
    // A key of no name, left by another program, is in no listing; first in
    // its section, it even hides the others from the platform's listing.
    DeleteValue("");
    sys::WriteProfileString(section.c_str(), kMarkerKey, kEmptyValue, file.c_str());
}

CTEnum<const char*>* CIniFileParam::EnumValues() {
    std::vector<char> buffer(kReadBuffer);
    const DWORD length = sys::ReadProfileKeyNames(section.c_str(), buffer.data(), kReadBuffer, file.c_str());
    return NewEnumerator(ListedNames(buffer, length), this);
}

void CIniFileParam::Clear() {
    DeleteAllSections();
    sys::DeleteProfileSection(section.c_str(), file.c_str());
}

CTEnum<const char*>* CIniFileParam::EnumSectionsImpl() {
    const std::string all = AllSectionNames();
    std::string children;
    std::vector<std::string> seen;
    for (const char* name = all.data(); *name != 0; name += std::strlen(name) + 1) {
        const std::string candidate(name);
        if (candidate == kRootSection || candidate.size() < section.size() ||
            CompareNoCase(candidate.substr(0, section.size()).c_str(), section.c_str()) != 0)
            continue;
        size_t start = section.size();
        if (!isRoot) {
            if (candidate[start] != '\\')
                continue;
            ++start;
        }
        if (start >= candidate.size())
            continue;
        const std::string child = candidate.substr(start, candidate.find('\\', start) - start);
        if (child.empty() || child.size() >= kSectionNameBuffer || children.size() + child.size() + 2 > kReadBuffer)
            continue;
        bool known = false;
        for (const std::string& other : seen)
            known = known || other == child;
        if (known)
            continue;
        seen.push_back(child);
        children.append(child).push_back('\0');
    }
    children.push_back('\0');
    return NewEnumerator(children, this);
}

}  // namespace kt::params

IParam* new_IParamIniFile(const KTWCHAR* file) {
    if (file == nullptr)
        throw CXException(XE_BAD_ARGUMENT);
    return new kt::params::CIniFileParam(CXString(file), kt::params::kRootSection, nullptr, nullptr);
}
