#include "params/RegistryParam.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "kticore/params/RegistryParam.h"
#include "params/BackEndRules.h"
#include "params/Held.h"
#include "params/RegistryNameEnum.h"
#include "params/RegistryValueLayout.h"
#include "platform/Registry.h"
#include "platform/TextConversion.h"

namespace kt::params {
namespace {

const BackEndRules& kRules = kRegistry;

// One read that fits most values, grown and repeated on ERROR_MORE_DATA: no size query first.
constexpr DWORD kFirstReadBytes = 256;
// Registry text shorter than this holds no character.
constexpr DWORD kShortestText = 2;

// The value's type and data, with a byte to spare behind the data; false when
// it is absent or cannot be read. The room grows as the value asks.
bool ReadValue(HKEY key, const char* name, DWORD& type, std::vector<BYTE>& data, DWORD& size) {
    data.resize(kFirstReadBytes + 1);
    for (;;) {
        size = static_cast<DWORD>(data.size() - 1);
        const LONG status = sys::QueryRegistryValue(key, name, &type, data.data(), &size);
        if (status == ERROR_SUCCESS)
            return true;
        if (status != ERROR_MORE_DATA)
            return false;
        data.resize(std::max<size_t>(size, data.size()) + 1);
    }
}

// A section path as the registry gets it: the empty path is the key itself,
// and a null one the same, which not every registry call accepts.
const char* KeyPath(const char* path) { return path != nullptr ? path : ""; }

// A value name widened as the registry's narrow functions widen it, so that
// wide text lands under the name that narrow calls find.
std::wstring WideName(const char* name) {
    const int length = static_cast<int>(std::strlen(name));
    std::wstring wide(static_cast<size_t>(sys::MultiByteToWide(sys::kAnsiCodePage, name, length, nullptr, 0)), L'\0');
    sys::MultiByteToWide(sys::kAnsiCodePage, name, length, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

}  // namespace

CRegistryParam::CRegistryParam(HKEY key) : key(key) {
    registered.Register(static_cast<IParam*>(this), typeid(IParam), 0);
    registered.Register(static_cast<IRegisterIface*>(this), typeid(IRegisterIface), 0);
}

CRegistryParam::~CRegistryParam() { sys::CloseRegistryKey(key); }

IParam* CRegistryParam::OnKey(HKEY key) {
    try {
        return new CRegistryParam(key);
    } catch (...) {
        sys::CloseRegistryKey(key);
        throw;
    }
}

ULONG CRegistryParam::Release() {
    if (--refCount != 0)
        return refCount;
    delete this;
    return 0;
}

int CRegistryParam::QueryInterface(const type_info& type, void** out) { return registered.Answer(type, out); }

int CRegistryParam::RegisterInterface(IKTUnknown* object, const type_info& type, int addRef) {
    return registered.Register(object, type, addRef);
}

IParam* CRegistryParam::CreateSection(const char* path) {
    path = KeyPath(path);
    if (Held<IParam> existing{GetSection(path, 0)})
        existing->Clear();
    HKEY made;
    if (sys::CreateRegistryKey(key, path, &made) != ERROR_SUCCESS)
        return nullptr;
    return OnKey(made);
}

IParam* CRegistryParam::GetSection(const char* path, int create) {
    path = KeyPath(path);
    HKEY opened;
    if (sys::OpenRegistryKey(key, path, &opened) == ERROR_SUCCESS)
        return OnKey(opened);
    return create != 0 ? CreateSection(path) : nullptr;
}

// The registry removes only keys without sub-keys: the branch goes from its
// leaves up. The empty path empties this key, then asks the registry to
// remove the key itself.
void CRegistryParam::DeleteSection(const char* path) {
    path = KeyPath(path);
    {
        Held<IParam> section(GetSection(path, 0));
        if (!section)
            return;
        section->DeleteAllSections();
        section->DeleteAllValues();
    }
    sys::DeleteRegistryKey(key, path);
}

void CRegistryParam::DeleteAllSections() {
    Held<CTEnum<const char*>> names(EnumSections());
    const char* name = nullptr;
    while (names->Next(1, &name, nullptr))
        DeleteSection(name);
}

CTEnum<const char*>* CRegistryParam::EnumSections() { return new _CTValEnum(key, _CTValEnum::Listing::kSubKeys); }

// Text comes back narrow, also when it was written wide. Any other type is
// binary data led by its kind, and must have the size of that kind.
int CRegistryParam::GetValue(const char* name, tagKTVARIANT* value) {
    KTVariantClear(value);
    DWORD type = REG_NONE;
    DWORD size = 0;
    std::vector<BYTE> data;
    if (!ReadValue(key, name, type, data, size))
        return 0;
    if (type == REG_SZ) {
        data[size < kShortestText ? 0 : size] = 0;
        char* text = reinterpret_cast<char*>(data.data());
        return KTVariantBindFromValue(KTVT_STR, &text, value);
    }
    return DecodeBinaryValue(data.data(), size, value) ? 1 : 0;
}

void CRegistryParam::SetValue(const char* name, const tagKTVARIANT* value) {
    if (value == nullptr || !Stores(kRules, value->vt))
        return;
    if (value->vt == KTVT_STR) {
        const char* text = value->pszVal != nullptr ? value->pszVal : "";
        sys::SetRegistryValue(key, name, REG_SZ, text, static_cast<DWORD>(std::strlen(text) + 1));
        return;
    }
    if (value->vt == KTVT_WSTR) {
        const KTWCHAR* text = value->pwszVal != nullptr ? value->pwszVal : L"";
        const DWORD size = static_cast<DWORD>((std::wcslen(text) + 1) * sizeof(KTWCHAR));
        sys::SetRegistryValue(key, name != nullptr ? WideName(name).c_str() : nullptr, REG_SZ, text, size);
        return;
    }
    std::vector<BYTE> data;
    if (EncodeBinaryValue(*value, data))
        sys::SetRegistryValue(key, name, REG_BINARY, data.data(), static_cast<DWORD>(data.size()));
}

void CRegistryParam::DeleteValue(const char* name) { sys::DeleteRegistryValue(key, name); }

void CRegistryParam::DeleteAllValues() {
    Held<CTEnum<const char*>> names(EnumValues());
    const char* name = nullptr;
    while (names->Next(1, &name, nullptr))
        DeleteValue(name);
}

CTEnum<const char*>* CRegistryParam::EnumValues() { return new _CTValEnum(key, _CTValEnum::Listing::kValues); }

// The sub-keys stay, emptied to their leaves.
void CRegistryParam::Clear() {
    Held<CTEnum<const char*>> names(EnumSections());
    const char* name = nullptr;
    while (names->Next(1, &name, nullptr))
        if (Held<IParam> section{GetSection(name, 0)})
            section->Clear();
    DeleteAllValues();
}

}  // namespace kt::params

namespace {

// A null or empty sub-key opens the root itself.
IParam* OpenRoot(HKEY root, const KTWCHAR* subKey) {
    HKEY opened;
    if (kt::sys::OpenRegistryKey(root, subKey, &opened) != ERROR_SUCCESS)
        return nullptr;
    return kt::params::CRegistryParam::OnKey(opened);
}

}  // namespace

IParam* new_IParamLMReg(const KTWCHAR* subKey) { return OpenRoot(HKEY_LOCAL_MACHINE, subKey); }

IParam* new_IParamCUReg(const KTWCHAR* subKey) { return OpenRoot(HKEY_CURRENT_USER, subKey); }
