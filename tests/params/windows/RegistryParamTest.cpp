// The registry tree against the real registry: each test works below a key of
// its own under HKEY_CURRENT_USER, and checks what the registry holds through
// the platform's own functions, not through the tree.
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

#include "kticore/params/RegistryParam.h"
#include "tests/params/AllKinds.h"

namespace kt::test {
namespace {

constexpr wchar_t kTestRoot[] = L"Software\\kticore-tests";

// What the registry holds below a key: every key by its path, every value
// by its path and name, with its type and bytes.
using RegistryContent = std::map<std::string, std::string>;

void ReadContent(HKEY key, const std::string& path, RegistryContent& content) {
    content["key " + path];
    char name[16384];
    BYTE data[4096];
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = sizeof name;
        DWORD dataSize = sizeof data;
        DWORD type = 0;
        if (RegEnumValueA(key, index, name, &nameSize, nullptr, &type, data, &dataSize) != ERROR_SUCCESS)
            break;
        content["value " + path + "|" + name] =
            std::to_string(type) + ":" + std::string(reinterpret_cast<char*>(data), dataSize);
    }
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = sizeof name;
        if (RegEnumKeyExA(key, index, name, &nameSize, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        HKEY sub;
        ASSERT_EQ(RegOpenKeyExA(key, name, 0, KEY_READ, &sub), ERROR_SUCCESS) << name;
        ReadContent(sub, path + "\\" + name, content);
        RegCloseKey(sub);
    }
}

// The key paths and the value names ("path|name") that the content holds.
Names Keys(const RegistryContent& content) {
    Names keys;
    for (const auto& entry : content)
        if (entry.first.rfind("key ", 0) == 0)
            keys.push_back(entry.first.substr(4));
    return keys;
}
Names Values(const RegistryContent& content) {
    Names values;
    for (const auto& entry : content)
        if (entry.first.rfind("value ", 0) == 0)
            values.push_back(entry.first.substr(6));
    return values;
}

// The names of a key's values in the registry's own order.
Names RawValueNames(HKEY key) {
    Names names;
    char name[16384];
    for (DWORD index = 0;; ++index) {
        DWORD size = sizeof name;
        if (RegEnumValueA(key, index, name, &size, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            return names;
        names.push_back(name);
    }
}

// A registry value as the platform gives it: its type, then its bytes.
struct RawValue {
    DWORD type;
    std::string bytes;
    bool operator==(const RawValue& other) const { return type == other.type && bytes == other.bytes; }
};

// The bytes of a value of ours: the kind, then the value as it lies in
// memory.
template <class T>
std::string Binary(ULONG kind, const T& value) {
    return std::string(reinterpret_cast<const char*>(&kind), 4) +
           std::string(reinterpret_cast<const char*>(&value), sizeof value);
}
std::string KindOnly(ULONG kind) { return std::string(reinterpret_cast<const char*>(&kind), 4); }
template <size_t N>
std::string Bytes(const char (&bytes)[N]) { return std::string(bytes, N - 1); }
std::string Text(const char* text) { return std::string(text, std::strlen(text) + 1); }

CKTVariant Typed(CKTVariant value, unsigned short kind) {
    value.vt = kind;
    return value;
}

class RegistryParamTest : public ::testing::Test {
protected:
    void SetUp() override {
        path = std::wstring(kTestRoot) + L"\\" + std::to_wstring(GetCurrentProcessId());
        ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &raw,
                                  nullptr),
                  ERROR_SUCCESS);
        tree.reset(new_IParamCUReg(path.c_str()));
        ASSERT_NE(tree, nullptr);
    }
    void TearDown() override {
        tree.reset();
        RegCloseKey(raw);
        RegDeleteTreeW(HKEY_CURRENT_USER, kTestRoot);
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, kTestRoot);  // should a root have been made there
    }

    RegistryContent Content() {
        RegistryContent content;
        ReadContent(raw, "", content);
        return content;
    }
    RawValue Raw(const char* name) {
        RawValue value{REG_NONE, std::string(4096, '\0')};
        DWORD size = static_cast<DWORD>(value.bytes.size());
        if (RegQueryValueExA(raw, name, nullptr, &value.type, reinterpret_cast<BYTE*>(value.bytes.data()),
                             &size) != ERROR_SUCCESS)
            return RawValue{REG_NONE, "absent"};
        value.bytes.resize(size);
        return value;
    }
    void SetRaw(const char* name, const RawValue& value) {
        ASSERT_EQ(RegSetValueExA(raw, name, 0, value.type, reinterpret_cast<const BYTE*>(value.bytes.data()),
                                 static_cast<DWORD>(value.bytes.size())),
                  ERROR_SUCCESS);
    }
    bool KeyExists(const char* sub) {
        HKEY key;
        if (RegOpenKeyExA(raw, sub, 0, KEY_READ, &key) != ERROR_SUCCESS)
            return false;
        RegCloseKey(key);
        return true;
    }

    std::wstring path;
    HKEY raw = nullptr;
    Ref<IParam> tree;
};

// Every kind the tree keeps: what it writes, as the platform reads it, and
// what it reads from the same bytes written by the platform.
TEST_F(RegistryParamTest, EveryKindLiesInItsLayoutAndReadsBack) {
    const unsigned char blobBytes[] = {9, 0, 255};
    const std::string longText(1000, 't');  // longer than a first read takes
    KTBlob threeBytes(3);
    std::memcpy(threeBytes.data, blobBytes, 3);
    const struct {
        const char* name;
        CKTVariant written;
        RawValue stored;
        CKTVariant read;
    } rows[] = {
        {"empty", CKTVariant(), {REG_BINARY, KindOnly(KTVT_EMPTY)}, CKTVariant()},
        {"bool", CKTVariant(1, KTVT_BOOL), {REG_BINARY, Binary(KTVT_BOOL, 1u)}, CKTVariant(1, KTVT_BOOL)},
        {"byte", CKTVariant(static_cast<unsigned char>(200)), {REG_BINARY, Binary(KTVT_BYTE, '\xC8')},
         CKTVariant(static_cast<unsigned char>(200))},
        {"word", CKTVariant(static_cast<unsigned short>(60000)),
         {REG_BINARY, Binary(KTVT_WORD, static_cast<unsigned short>(60000))},
         CKTVariant(static_cast<unsigned short>(60000))},
        {"ulong", CKTVariant(4000000000ul), {REG_BINARY, Binary(KTVT_ULONG, 4000000000u)},
         CKTVariant(4000000000ul)},
        {"int", CKTVariant(-123456), {REG_BINARY, Binary(KTVT_INT, -123456)}, CKTVariant(-123456)},
        {"uint", CKTVariant(3000000000u), {REG_BINARY, Binary(KTVT_UINT, 3000000000u)}, CKTVariant(3000000000u)},
        {"long", Typed(CKTVariant(-7), KTVT_LONG), {REG_BINARY, Binary(KTVT_LONG, -7)},
         Typed(CKTVariant(-7), KTVT_LONG)},
        {"double", CKTVariant(-1234.5678901234), {REG_BINARY, Binary(KTVT_DOUBLE, -1234.5678901234)},
         CKTVariant(-1234.5678901234)},
        {"float", CKTVariant(3.25f), {REG_BINARY, Binary(KTVT_FLOAT, 3.25f)}, CKTVariant(3.25f)},
        {"size", CKTVariant(tagSIZE{640, -480}), {REG_BINARY, Binary(KTVT_SIZE, tagSIZE{640, -480})},
         CKTVariant(tagSIZE{640, -480})},
        {"rsize", CKTVariant(tagRSIZE{1.25, 2e-3}), {REG_BINARY, Binary(KTVT_RSIZE, tagRSIZE{1.25, 2e-3})},
         CKTVariant(tagRSIZE{1.25, 2e-3})},
        {"point", CKTVariant(tagPOINT{-1, 1}), {REG_BINARY, Binary(KTVT_POINT, tagPOINT{-1, 1})},
         CKTVariant(tagPOINT{-1, 1})},
        {"rpoint", CKTVariant(tagRPOINT{1e10, -0.5}), {REG_BINARY, Binary(KTVT_RPOINT, tagRPOINT{1e10, -0.5})},
         CKTVariant(tagRPOINT{1e10, -0.5})},
        {"rect", CKTVariant(tagRECT{1, 2, 300, 400}), {REG_BINARY, Binary(KTVT_RECT, tagRECT{1, 2, 300, 400})},
         CKTVariant(tagRECT{1, 2, 300, 400})},
        {"rrect", CKTVariant(tagRRECT{0.5, 0.25, 10.5, 20.75}),
         {REG_BINARY, Binary(KTVT_RRECT, tagRRECT{0.5, 0.25, 10.5, 20.75})},
         CKTVariant(tagRRECT{0.5, 0.25, 10.5, 20.75})},
        {"blob", CKTVariant(threeBytes), {REG_BINARY, Binary(KTVT_BLOB, 3u) + Bytes("\x09\x00\xFF")}, CKTVariant(threeBytes)},
        {"no bytes", Blob(0), {REG_BINARY, Binary(KTVT_BLOB, 0u)}, Blob(0)},
        {"text", CKTVariant("some text"), {REG_SZ, Text("some text")}, CKTVariant("some text")},
        {"no text", CKTVariant(""), {REG_SZ, Text("")}, CKTVariant("")},
        {"long text", CKTVariant(longText.c_str()), {REG_SZ, Text(longText.c_str())}, CKTVariant(longText.c_str())},
        {"wide", CKTVariant(KTW("wide text")), {REG_SZ, Text("wide text")}, CKTVariant("wide text")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        tree->SetValue(row.name, &row.written);
        EXPECT_EQ(Raw(row.name), row.stored);
        EXPECT_EQ(ValueAt(tree.get(), row.name), row.read);
        const std::string rawName = std::string("raw ") + row.name;
        SetRaw(rawName.c_str(), row.stored);
        EXPECT_EQ(ValueAt(tree.get(), rawName.c_str()), row.read);
    }
}

// Objects and kinds without a number of their own have no form: a value of
// that name stays as it was, and none is made.
TEST_F(RegistryParamTest, KindsWithoutAFormLeaveTheRegistryAlone) {
    Ref<IParam> object(new_MemParam());
    const CKTVariant dropped[] = {CKTVariant(object.get()), Typed(CKTVariant(), KTVT_WSTR + 1),
                                  Typed(CKTVariant(5), KTVT_BORROWED | KTVT_INT)};
    Set(tree.get(), "kept", CKTVariant(42));
    const RegistryContent before = Content();
    for (const CKTVariant& value : dropped) {
        tree->SetValue("kept", &value);
        tree->SetValue("new", &value);
    }
    EXPECT_EQ(Content(), before);
}

// Data that is no value of ours reads as absent, with the caller's variant
// cleared and the registry as it was.
TEST_F(RegistryParamTest, ForeignValuesReadAsAbsent) {
    const struct {
        const char* name;
        RawValue stored;
    } rows[] = {
        {"dword that looks like an empty value", {REG_DWORD, KindOnly(KTVT_EMPTY)}},
        {"dword", {REG_DWORD, KindOnly(KTVT_ULONG)}},
        {"qword", {REG_QWORD, Binary(KTVT_EMPTY, 0u)}},
        {"expandable text", {REG_EXPAND_SZ, Text("%TEMP%")}},
        {"short of a kind", {REG_BINARY, Bytes("\x04\x00")}},
        {"no binary data", {REG_BINARY, ""}},
        {"short of its row", {REG_BINARY, KindOnly(KTVT_DOUBLE) + "1234"}},
        {"beyond its row", {REG_BINARY, Binary(KTVT_INT, 7) + "x"}},
        {"empty with bytes behind", {REG_BINARY, Binary(KTVT_EMPTY, 0u)}},
        {"blob short of its count", {REG_BINARY, Binary(KTVT_BLOB, 10u) + "abcd"}},
        {"blob beyond its count", {REG_BINARY, Binary(KTVT_BLOB, 1u) + "ab"}},
        {"blob with a count that wraps", {REG_BINARY, Binary(KTVT_BLOB, 0xFFFFFFFFu) + "abcd"}},
        {"text as binary", {REG_BINARY, KindOnly(KTVT_STR) + Text("x")}},
        {"object", {REG_BINARY, Binary(KTVT_OBJECT, 0ull)}},
        {"unknown kind", {REG_BINARY, Binary(99u, 0u)}},
    };
    for (const auto& row : rows)
        SetRaw(row.name, row.stored);
    const RegistryContent before = Content();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CKTVariant value(17);
        EXPECT_EQ(tree->GetValue(row.name, &value), 0);
        EXPECT_EQ(value.vt, KTVT_EMPTY);
    }
    EXPECT_EQ(Content(), before);
}

TEST_F(RegistryParamTest, ValueNamesAreTheRegistrysOwn) {
    Set(tree.get(), "a\\b", CKTVariant(1));
    Set(tree.get(), "", CKTVariant("unnamed"));
    Set(tree.get(), "@", CKTVariant(2));
    Set(tree.get(), "Name", CKTVariant(3));
    Set(tree.get(), "NAME", CKTVariant(4));
    EXPECT_EQ(Keys(Content()), Names{""});
    EXPECT_EQ(Raw("a\\b"), (RawValue{REG_BINARY, Binary(KTVT_INT, 1)}));
    EXPECT_EQ(Raw(nullptr), (RawValue{REG_SZ, Text("unnamed")}));
    EXPECT_EQ(ValueAt(tree.get(), nullptr), CKTVariant("unnamed"));
    EXPECT_EQ(ValueAt(tree.get(), "@"), CKTVariant(2));
    EXPECT_EQ(ValueAt(tree.get(), "name"), CKTVariant(4));
    EXPECT_EQ(Values(Content()), (Names{"|", "|@", "|Name", "|a\\b"}));
    EXPECT_EQ(ValueNames(tree.get()), RawValueNames(raw));

    // A name longer than a key's may be is listed, and cleared.
    const std::string longName(600, 'n');
    Set(tree.get(), longName.c_str(), CKTVariant(5));
    const Names listed = ValueNames(tree.get());
    EXPECT_NE(std::find(listed.begin(), listed.end(), longName), listed.end());
    tree->Clear();
    EXPECT_EQ(Values(Content()), Names{});
}

TEST_F(RegistryParamTest, SectionsAreSubKeys) {
    EXPECT_EQ(tree->GetSection("a\\b", 0), nullptr);
    EXPECT_EQ(Keys(Content()), Names{""});

    Ref<IParam> b(tree->GetSection("a\\b", 1));
    ASSERT_NE(b, nullptr);
    Set(b.get(), "v", CKTVariant(1));
    EXPECT_EQ(Values(Content()), Names{"\\a\\b|v"});

    // CreateSection of a key with content empties it, down to its leaves,
    // and gives an object on it.
    Ref<IParam> c(tree->GetSection("a\\b\\c", 1));
    Set(c.get(), "w", CKTVariant(2));
    Set(tree.get(), "a\\x", CKTVariant(3));  // a value named so, in the root
    Ref<IParam> a(tree->CreateSection("a"));
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(Keys(Content()), (Names{"", "\\a", "\\a\\b", "\\a\\b\\c"}));
    EXPECT_EQ(Values(Content()), Names{"|a\\x"});
    Set(a.get(), "new", CKTVariant(4));
    EXPECT_EQ(Values(Content()), (Names{"\\a|new", "|a\\x"}));

    // DeleteSection takes the whole branch, and nothing beside it.
    Set(c.get(), "w", CKTVariant(2));
    tree->CreateSection("beside")->Release();
    tree->DeleteSection("a");
    EXPECT_EQ(Keys(Content()), (Names{"", "\\beside"}));
    EXPECT_EQ(Values(Content()), Names{"|a\\x"});
    // An object on a key that went stays safe to use.
    EXPECT_EQ(ValueAt(c.get(), "w").vt, kMissing);
    // A section of no name has no key: the empty path is none of this key's.
    const RegistryContent before = Content();
    EXPECT_EQ(tree->GetSection("", 1), nullptr);
    EXPECT_EQ(tree->CreateSection(""), nullptr);
    tree->DeleteSection("");
    tree->DeleteSection("missing");
    EXPECT_EQ(Content(), before);
}

TEST_F(RegistryParamTest, ClearEmptiesSubKeysAndKeepsThem) {
    Ref<IParam> deep(tree->CreateSection("a\\b\\c"));
    Set(deep.get(), "v", CKTVariant(1));
    Ref<IParam> a(tree->GetSection("a", 0));
    Set(a.get(), "w", CKTVariant(2));
    Set(tree.get(), "root", CKTVariant(3));
    tree->CreateSection("z")->Release();
    tree->Clear();
    EXPECT_EQ(Keys(Content()), (Names{"", "\\a", "\\a\\b", "\\a\\b\\c", "\\z"}));
    EXPECT_EQ(Values(Content()), Names{});
    tree->DeleteAllSections();
    EXPECT_EQ(Keys(Content()), Names{""});
}

// The listings are taken once: later changes are not seen, and a walk that
// deletes what it lists, or that outlives its key, is safe.
TEST_F(RegistryParamTest, ListingsAreSnapshotsInTheRegistrysOrder) {
    constexpr int kValues = 100;  // across several growths of the listing
    for (int i = 0; i < kValues; ++i)
        Set(tree.get(), ("v" + std::to_string(i)).c_str(), CKTVariant(i));
    const Names inRegistryOrder = RawValueNames(raw);
    ASSERT_EQ(inRegistryOrder.size(), static_cast<size_t>(kValues));

    Ref<IParam> other(new_IParamCUReg(path.c_str()));
    Ref<CTEnum<const char*>> names(other->EnumValues());
    other.reset();
    Set(tree.get(), "later", CKTVariant(1));
    Names walked;
    const char* batch[3] = {};
    ULONG fetched = 99;
    while (names->Next(3, batch, &fetched)) {
        ASSERT_LE(fetched, 3u);
        for (ULONG i = 0; i < fetched; ++i) {
            walked.push_back(batch[i]);
            tree->DeleteValue(batch[i]);
        }
        fetched = 99;
    }
    EXPECT_EQ(fetched, 99u);  // the end leaves the count alone
    EXPECT_EQ(walked, inRegistryOrder);
    EXPECT_EQ(ValueNames(tree.get()), Names{"later"});

    names->Reset();
    ASSERT_EQ(names->Skip(kValues - 1), 1);
    ASSERT_EQ(names->Next(1, batch, nullptr), 1);
    EXPECT_EQ(batch[0], inRegistryOrder.back());
    names->Reset();
    names->Next(1, batch, nullptr);
    names->Skip(0xFFFFFFFF);  // past the end, not round to the start
    EXPECT_EQ(names->Next(1, batch, nullptr), 0);
}

TEST_F(RegistryParamTest, TwoTreesOnOneKeySeeEachOthersChanges) {
    Ref<IParam> other(new_IParamCUReg(path.c_str()));
    Set(tree.get(), "s\\v", CKTVariant(1));  // a value of that name
    Ref<IParam> section(other->GetSection("s", 1));
    Set(section.get(), "v", CKTVariant(2));
    EXPECT_EQ(ValueAt(other.get(), "s\\v"), CKTVariant(1));
    EXPECT_EQ(SectionNames(tree.get()), Names{"s"});
    Ref<IParam> same(tree->GetSection("s", 0));
    EXPECT_EQ(ValueAt(same.get(), "v"), CKTVariant(2));
    other->DeleteSection("s");
    EXPECT_EQ(tree->GetSection("s", 0), nullptr);
    tree->DeleteValue("s\\v");
    EXPECT_EQ(ValueAt(other.get(), "s\\v").vt, kMissing);
}

TEST_F(RegistryParamTest, RootsOpenOnlyKeysThatExist) {
    const std::wstring missing = path + L"\\missing";
    EXPECT_EQ(new_IParamCUReg(missing.c_str()), nullptr);
    EXPECT_FALSE(KeyExists("missing"));
    EXPECT_EQ(FailureOf([] { new_IParamCUReg(nullptr); }), static_cast<DWORD>(XE_BAD_ARGUMENT));
    EXPECT_EQ(new_IParamLMReg(L"Software\\kticore-tests\\missing"), nullptr);
    Ref<IParam> machine(new_IParamLMReg(L"Software"));
    EXPECT_NE(machine, nullptr);

    void* answer = nullptr;
    ASSERT_EQ(tree->QueryInterface(typeid(IParam), &answer), 1);
    EXPECT_EQ(answer, tree.get());
    tree->Release();
    ASSERT_EQ(tree->QueryInterface(typeid(IRegisterIface), &answer), 1);
    Ref<IRegisterIface> registrar(static_cast<IRegisterIface*>(answer));
    Ref<IParam> extra(new_MemParam());
    EXPECT_EQ(tree->QueryInterface(typeid(IKTUnknown), nullptr), 0);
    EXPECT_EQ(registrar->RegisterInterface(extra.get(), typeid(IKTUnknown), 1), 1);
    EXPECT_EQ(tree->QueryInterface(typeid(IKTUnknown), nullptr), 1);
}

// A DACL that lets everyone read and nobody write, taken off again at the
// end so that the key can go. Wine denies all access to such a key, as
// Windows does; its owner keeps the right to change the DACL.
class ReadOnlyKey {
public:
    ReadOnlyKey(HKEY parent, const char* name) {
        HKEY key;
        EXPECT_EQ(RegOpenKeyExA(parent, name, 0, KEY_ALL_ACCESS, &key), ERROR_SUCCESS);
        SID_IDENTIFIER_AUTHORITY world = SECURITY_WORLD_SID_AUTHORITY;
        PSID everyone = nullptr;
        AllocateAndInitializeSid(&world, 1, SECURITY_WORLD_RID, 0, 0, 0, 0, 0, 0, 0, &everyone);
        BYTE aclBytes[256];
        auto* acl = reinterpret_cast<ACL*>(aclBytes);
        InitializeAcl(acl, sizeof aclBytes, ACL_REVISION);
        AddAccessAllowedAce(acl, ACL_REVISION, KEY_READ, everyone);
        EXPECT_EQ(SetDacl(key, acl), ERROR_SUCCESS);
        FreeSid(everyone);
        RegCloseKey(key);
        EXPECT_EQ(RegOpenKeyExA(parent, name, 0, WRITE_DAC, &owned), ERROR_SUCCESS);
    }
    ~ReadOnlyKey() {
        SetDacl(owned, nullptr);  // no DACL: all access
        RegCloseKey(owned);
    }

private:
    static LONG SetDacl(HKEY key, ACL* acl) {
        SECURITY_DESCRIPTOR descriptor;
        InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
        SetSecurityDescriptorDacl(&descriptor, TRUE, acl, FALSE);
        return RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, &descriptor);
    }
    HKEY owned = nullptr;
};

TEST_F(RegistryParamTest, KeysWithoutWriteAccessAreNotOpened) {
    Set(Ref<IParam>(tree->GetSection("locked\\inner", 1)).get(), "v", CKTVariant(1));
    Set(tree.get(), "free", CKTVariant(2));
    ReadOnlyKey locked(raw, "locked");
    const RegistryContent before = Content();
    ASSERT_EQ(before.count("value \\locked\\inner|v"), 1u);

    const std::wstring lockedPath = path + L"\\locked";
    EXPECT_EQ(new_IParamCUReg(lockedPath.c_str()), nullptr);
    EXPECT_EQ(tree->GetSection("locked", 0), nullptr);
    EXPECT_EQ(tree->GetSection("locked", 1), nullptr);
    EXPECT_EQ(tree->CreateSection("locked"), nullptr);
    tree->DeleteSection("locked");
    EXPECT_EQ(Content(), before);
    EXPECT_EQ(SectionNames(tree.get()), Names{"locked"});
}

}  // namespace
}  // namespace kt::test
