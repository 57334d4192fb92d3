#include "params/IniFileParam.h"

#include <algorithm>
#include <cstring>
#include <string_view>
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
// The most bytes of marked text that a read gives back whole.
constexpr size_t kLongestMarkedText = kReadBuffer - 1;
// Bytes of a full section name or a child's name, terminator included.
constexpr size_t kSectionNameBuffer = 512;

// The blanks that the platform trims from names: those of the C locale and
// 0x1A.
constexpr char kBlanks[] = " \t\n\v\f\r\x1a";

bool IsBlankOnly(const std::string& text) { return text.find_first_not_of(kBlanks) == std::string::npos; }
bool EndsInBlank(const std::string& text) {
    return !text.empty() && std::string_view(kBlanks).find(text.back()) != std::string_view::npos;
}

// What the file can hold as the name of a key: no "=", which would end it, no
// line end, no start that reads as a section or a comment, and some name: a
// name of blanks only is no name, and a name of no name would end a
// zero-terminated listing early.
bool FitsKeyName(const char* name) {
    const std::string text(name);
    return text.find('=') == std::string::npos && !HoldsLineEnd(text) && text[0] != '[' &&
           text[0] != ';' && !IsBlankOnly(text) && text.size() <= sys::kLongestProfileName;
}

// Whether the file would take the full section name `name` for another
// section's, or for none: a line end cannot stand in a name, the platform
// trims blanks from its end, and "\" alone is the root's. An empty piece
// ("\a\", "\\x") is a name like any other.
bool NamesAnotherSection(const std::string& name, bool isRoot) {
    return HoldsLineEnd(name) || EndsInBlank(name) || (name == kRootSection && !isRoot);
}

// Whether the section of that full name keeps values of its own: a name of
// its own, short of the section buffer.
bool HoldsValues(const std::string& name, bool isRoot) {
    return !NamesAnotherSection(name, isRoot) && name.size() < kSectionNameBuffer;
}

// What the full names of the sections below the section `name` begin with:
// the root's children are "\a", the others' "\a\b".
std::string ChildPrefix(const std::string& name, bool isRoot) { return isRoot ? name : name + '\\'; }

// Whether the listed section lies below the section whose children's names
// begin with `prefix` ("\" for the root, which is not below itself).
bool IsBelow(const char* listed, const std::string& prefix, bool isRoot) {
    const size_t length = std::strlen(listed);
    return length >= prefix.size() + (isRoot ? 1 : 0) &&
           CompareNoCase(std::string(listed, prefix.size()).c_str(), prefix.c_str()) == 0;
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

CIniFileParam::CIniFileParam(const char* file, const std::string& section, IParam* parent)
    : file(file), section(section), sectionLength(static_cast<int>(section.size())), isRoot(parent == nullptr) {
    registered.Register(static_cast<IRegisterIface*>(this), typeid(IRegisterIface), 0);
    // A section without keys does not exist for the file: the marker key
    // makes this one.
    char probe[2];
    if (HoldsOwnValues() &&
        sys::ReadProfileString(section.c_str(), kMarkerKey, probe, sizeof probe, file) == 0) {
        Fio_CreateDirectory(CXStringW(file).FilePath());
        sys::WriteProfileString(section.c_str(), kMarkerKey, kEmptyValue, file);
    }
    SetParent(parent);
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

bool CIniFileParam::HoldsOwnValues() const { return HoldsValues(section, isRoot != 0); }

std::string CIniFileParam::SectionBelow(const char* path) const {
    return ChildPrefix(section, isRoot != 0) + (path != nullptr ? path : "");
}

IParam* CIniFileParam::OpenBelow(const char* path) {
    return new CIniFileParam(file.c_str(), SectionBelow(path), this);
}

IParam* CIniFileParam::CreateSection(const char* path) {
    DeleteSection(path);
    return OpenBelow(path);
}

IParam* CIniFileParam::GetSection(const char* path, int create) {
    const std::string name = SectionBelow(path);
    std::vector<char> keys(kReadBuffer);
    if (create == 0 && (!HoldsValues(name, false) ||
                        sys::ReadProfileKeyNames(name.c_str(), keys.data(), kReadBuffer, file.c_str()) == 0))
        return nullptr;
    return OpenBelow(path);  // a missing section is made; sections below it stay
}

void CIniFileParam::DeleteSection(const char* path) { RemoveSections(SectionBelow(path), false, true); }

void CIniFileParam::DeleteAllSections() { RemoveSections(section, isRoot != 0, false); }

std::string CIniFileParam::AllSectionNames() const {
    std::vector<char> buffer(kReadBuffer);
    return ListedNames(buffer, sys::ReadProfileSectionNames(buffer.data(), kReadBuffer, file.c_str()));
}

// Every section below, also those that no child's name leads to (a piece of
// no name, one too long to be listed), goes by its name in the listing. A
// listing holds no more than its buffer: each pass lists anew, until one
// finds nothing more that goes.
void CIniFileParam::RemoveSections(const std::string& name, bool nameIsRoot, bool itself) const {
    const std::string prefix = ChildPrefix(name, nameIsRoot);
    std::vector<std::string> removed;
    for (;;) {
        std::vector<std::string> below;
        const std::string all = AllSectionNames();
        for (const char* listed = all.data(); *listed != 0; listed += std::strlen(listed) + 1)
            if (IsBelow(listed, prefix, nameIsRoot))
                below.emplace_back(listed);
        if (below.empty() || below == removed)
            break;
        for (const std::string& each : below)
            sys::DeleteProfileSection(each.c_str(), file.c_str());
        removed = std::move(below);
    }
    if (itself && !NamesAnotherSection(name, nameIsRoot))
        sys::DeleteProfileSection(name.c_str(), file.c_str());
}

int CIniFileParam::GetValue(const char* path, tagKTVARIANT* value) {
    const ValuePath split(path);
    if (split.HasSection()) {
        if (!split.Fits())
            return 0;
        Held<IParam> below(GetSection(split.Section(), 0));
        return below ? below->GetValue(split.Name(), value) : 0;
    }
    KTVariantClear(value);
    if (!HoldsOwnValues())
        return 0;
    std::vector<char> text(kReadBuffer);
    const DWORD length = sys::ReadProfileString(section.c_str(), ValueName(kRules, path), text.data(),
                                                kReadBuffer, file.c_str());
    CKTVariant read;
    if (length == 0 || !ReadMarkedValue(text.data(), read))
        return 0;
    KTVariantCopy(value, &read);
    return 1;
}

// What the file has no form for is dropped without a word, as objects and
// wide text are: the values of a section whose name the file would take for
// another, a key name it cannot hold, a text with a line end or longer than a
// read takes back. A blob too long goes with no digits, as in the text form.
// A path beyond its buffer is refused, as in every back end.
void CIniFileParam::SetValue(const char* path, const tagKTVARIANT* value) {
    const ValuePath split(path);
    if (split.HasSection()) {
        if (!split.Fits())
            throw CXException(XE_BAD_ARGUMENT);
        Held<IParam> below(GetSection(split.Section(), 1));
        below->SetValue(split.Name(), value);
        return;
    }
    const char* name = ValueName(kRules, path);
    std::string text;
    if (value == nullptr || !Stores(kRules, value->vt) || !HoldsOwnValues() || !FitsKeyName(name) ||
        !AppendMarkedValue(text, *value, kLongestMarkedText))
        return;
    // A value that is not stored leaves no older one behind.
    if (HoldsLineEnd(text) || text.size() > kLongestMarkedText)
        sys::DeleteProfileKey(section.c_str(), name, file.c_str());
    else
        sys::WriteProfileString(section.c_str(), name, text.c_str(), file.c_str());
}

void CIniFileParam::DeleteValue(const char* name) {
    if (HoldsOwnValues())
        sys::DeleteProfileKey(section.c_str(), name, file.c_str());
}

void CIniFileParam::DeleteAllValues() {
    if (!HoldsOwnValues())
        return;
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
    const DWORD length = HoldsOwnValues() ? sys::ReadProfileKeyNames(section.c_str(), buffer.data(),
                                                                     kReadBuffer, file.c_str())
                                          : 0;
    return NewEnumerator(ListedNames(buffer, length), this);
}

void CIniFileParam::Clear() { RemoveSections(section, isRoot != 0, true); }

CTEnum<const char*>* CIniFileParam::EnumSectionsImpl() {
    const std::string all = AllSectionNames();
    const std::string prefix = ChildPrefix(section, isRoot != 0);
    std::string children;
    std::vector<std::string> seen;
    for (const char* name = all.data(); *name != 0; name += std::strlen(name) + 1) {
        if (!IsBelow(name, prefix, isRoot != 0))
            continue;
        const std::string below(name + prefix.size());
        const std::string child = below.substr(0, below.find('\\'));
        // A child of no name would end the list.
        if (child.empty() || child.size() >= kSectionNameBuffer || children.size() + child.size() + 2 > kReadBuffer)
            continue;
        if (std::find(seen.begin(), seen.end(), child) != seen.end())
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
    return new kt::params::CIniFileParam(CXString(file), kt::params::kRootSection, nullptr);
}
