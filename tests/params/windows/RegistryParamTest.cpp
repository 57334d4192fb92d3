// The registry tree against the real registry: each test works below a key of
// its own under HKEY_CURRENT_USER, and checks what the registry holds through
// the platform's own functions, not through the tree.
#include <windows.h>

#include <sddl.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

#include "kticore/params/RegistryParam.h"
#include "tests/params/AllKinds.h"

namespace kt::test {
namespace {

constexpr wchar_t kTestRoot[] = L"Software\\kticore-tests";

// What the registry holds below a key: "path" for every key, "path|name"
// with its type and bytes for every value.
using RegistryContent = std::map<std::string, std::string>;

void ReadContent(HKEY key, const std::string& path, RegistryContent& content) {
    content[path];
    char name[16384];
    BYTE data[4096];
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = sizeof name, dataSize = sizeof data, type = 0;
        if (RegEnumValueA(key, index, name, &nameSize, nullptr, &type, data, &dataSize) != ERROR_SUCCESS)
            break;
        content[path + "|" + name] = std::to_string(type) + ":" + std::string(reinterpret_cast<char*>(data), dataSize);
    }
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = sizeof name;
        HKEY sub;
        if (RegEnumKeyExA(key, index, name, &nameSize, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        ASSERT_EQ(RegOpenKeyExA(key, name, 0, KEY_READ, &sub), ERROR_SUCCESS) << name;
        ReadContent(sub, path + "\\" + name, content);
        RegCloseKey(sub);
    }
}

// The key paths, or the value names ("path|name"), of the content.
enum class Entry { kKey, kValue };
Names Listed(const RegistryContent& content, Entry entry) {
    Names listed;
    for (const auto& item : content)
        if ((item.first.find('|') != std::string::npos) == (entry == Entry::kValue))
            listed.push_back(item.first);
    return listed;
}

// The names of a key's values in the registry's own order.
Names RawValueNames(HKEY key) {
    Names names;
    char name[16384];
    for (DWORD index = 0, size = sizeof name;
         RegEnumValueA(key, index, name, &size, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++index, size = sizeof name)
        names.push_back(name);
    return names;
}

// A registry value as the platform gives it: its type, then its bytes.
struct RawValue {
    DWORD type;
    std::string bytes;
    bool operator==(const RawValue& other) const { return type == other.type && bytes == other.bytes; }
};
// What Raw gives for a value that is not there.
const RawValue kAbsent{REG_NONE, "absent"};

// The bytes of a value of ours: the kind, then the value as it lies in memory.
template <class T>
std::string Binary(ULONG kind, const T& value) {
    return std::string(reinterpret_cast<const char*>(&kind), 4) +
           std::string(reinterpret_cast<const char*>(&value), sizeof value);
}
std::string KindOnly(ULONG kind) { return std::string(reinterpret_cast<const char*>(&kind), 4); }
std::string Text(const char* text) { return std::string(text, std::strlen(text) + 1); }
std::string BlobBytes(const CKTVariant& blob) {
    return std::string(reinterpret_cast<const char*>(blob.blobVal.data), blob.blobVal.size);
}

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
            return kAbsent;
        value.bytes.resize(size);
        return value;
    }
    void SetRaw(const char* name, const RawValue& value) {
        ASSERT_EQ(RegSetValueExA(raw, name, 0, value.type, reinterpret_cast<const BYTE*>(value.bytes.data()),
                                 static_cast<DWORD>(value.bytes.size())),
                  ERROR_SUCCESS);
    }

    std::wstring path;
    HKEY raw = nullptr;
    Ref<IParam> tree;
};

// Every kind the tree keeps: what it writes, as the platform reads it, and
// what it reads from the same bytes written by the platform.
TEST_F(RegistryParamTest, EveryKindLiesInItsLayoutAndReadsBack) {
    const CKTVariant longBlob = Blob(300);  // longer than a first read takes
    const std::string longText(1000, 't');
    const struct {
        const char* name;
        CKTVariant value;
        RawValue stored;
    } rows[] = {
        {"empty", CKTVariant(), {REG_BINARY, KindOnly(KTVT_EMPTY)}},
        {"bool", CKTVariant(1, KTVT_BOOL), {REG_BINARY, Binary(KTVT_BOOL, 1u)}},
        {"byte", CKTVariant(static_cast<unsigned char>(200)), {REG_BINARY, Binary(KTVT_BYTE, '\xC8')}},
        {"word", CKTVariant(static_cast<unsigned short>(60000)),
         {REG_BINARY, Binary(KTVT_WORD, static_cast<unsigned short>(60000))}},
        {"ulong", CKTVariant(4000000000ul), {REG_BINARY, Binary(KTVT_ULONG, 4000000000u)}},
        {"int", CKTVariant(-123456), {REG_BINARY, Binary(KTVT_INT, -123456)}},
        {"uint", CKTVariant(3000000000u), {REG_BINARY, Binary(KTVT_UINT, 3000000000u)}},
        {"long", Typed(CKTVariant(-7), KTVT_LONG), {REG_BINARY, Binary(KTVT_LONG, -7)}},
        {"double", CKTVariant(-1234.5678901234), {REG_BINARY, Binary(KTVT_DOUBLE, -1234.5678901234)}},
        {"float", CKTVariant(3.25f), {REG_BINARY, Binary(KTVT_FLOAT, 3.25f)}},
        {"size", CKTVariant(tagSIZE{640, -480}), {REG_BINARY, Binary(KTVT_SIZE, tagSIZE{640, -480})}},
        {"rsize", CKTVariant(tagRSIZE{1.25, 2e-3}), {REG_BINARY, Binary(KTVT_RSIZE, tagRSIZE{1.25, 2e-3})}},
        {"point", CKTVariant(tagPOINT{-1, 1}), {REG_BINARY, Binary(KTVT_POINT, tagPOINT{-1, 1})}},
        {"rpoint", CKTVariant(tagRPOINT{1e10, -0.5}), {REG_BINARY, Binary(KTVT_RPOINT, tagRPOINT{1e10, -0.5})}},
        {"rect", CKTVariant(tagRECT{1, 2, 300, 400}), {REG_BINARY, Binary(KTVT_RECT, tagRECT{1, 2, 300, 400})}},
        {"rrect", CKTVariant(tagRRECT{0.5, 0.25, 10.5, 20.75}),
         {REG_BINARY, Binary(KTVT_RRECT, tagRRECT{0.5, 0.25, 10.5, 20.75})}},
        {"blob", Blob(3), {REG_BINARY, Binary(KTVT_BLOB, 3u) + std::string("\x00\x07\x0E", 3)}},
        {"long blob", longBlob, {REG_BINARY, Binary(KTVT_BLOB, 300u) + BlobBytes(longBlob)}},
        {"no bytes", Blob(0), {REG_BINARY, Binary(KTVT_BLOB, 0u)}},
        {"text", CKTVariant("some text"), {REG_SZ, Text("some text")}},
        {"no text", CKTVariant(""), {REG_SZ, Text("")}},
        {"long text", CKTVariant(longText.c_str()), {REG_SZ, Text(longText.c_str())}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        tree->SetValue(row.name, &row.value);
        EXPECT_EQ(Raw(row.name), row.stored);
        EXPECT_EQ(ValueAt(tree.get(), row.name), row.value);
        const std::string rawName = std::string("raw ") + row.name;
        SetRaw(rawName.c_str(), row.stored);
        EXPECT_EQ(ValueAt(tree.get(), rawName.c_str()), row.value);
    }

    // A blob that counts bytes it has not is kept as a blob of none.
    tagKTVARIANT noData{};
    noData.vt = KTVT_BLOB;
    noData.blobVal.size = 5;
    tree->SetValue("no data", &noData);
    EXPECT_EQ(Raw("no data"), (RawValue{REG_BINARY, Binary(KTVT_BLOB, 0u)}));
}

// Wide text is written wide, so that no character is lost to the code page,
// and reads back as narrow text.
TEST_F(RegistryParamTest, WideTextIsWrittenWideAndReadNarrow) {
    const std::wstring text = L"\u0F00 wide";  // in no ANSI code page
    Set(tree.get(), "wide", CKTVariant(text.c_str()));
    std::wstring stored(64, L'\0');
    DWORD type = REG_NONE, size = static_cast<DWORD>(stored.size() * sizeof(wchar_t));
    ASSERT_EQ(RegQueryValueExW(raw, L"wide", nullptr, &type, reinterpret_cast<BYTE*>(stored.data()), &size),
              ERROR_SUCCESS);
    stored.resize(size / sizeof(wchar_t));
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(stored, text + L'\0');
    Set(tree.get(), "plain", CKTVariant(KTW("wide text")));
    EXPECT_EQ(ValueAt(tree.get(), "plain"), CKTVariant("wide text"));
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

// Values from elsewhere: any type but text is binary data led by its kind,
// and data that does not fit its kind reads as absent. Either way the
// caller's variant is cleared first, and the registry stays as it was.
TEST_F(RegistryParamTest, ForeignValuesAreReadByTheirLeadingKind) {
    const struct {
        const char* name;
        RawValue stored;
        int found;
        CKTVariant read;
    } rows[] = {
        {"dword of zero", {REG_DWORD, KindOnly(KTVT_EMPTY)}, 1, CKTVariant()},
        {"untyped int", {REG_NONE, Binary(KTVT_INT, 7)}, 1, CKTVariant(7)},
        {"dword", {REG_DWORD, KindOnly(KTVT_ULONG)}, 0, {}},
        {"qword", {REG_QWORD, Binary(KTVT_EMPTY, 0u)}, 0, {}},
        {"expandable text", {REG_EXPAND_SZ, Text("%TEMP%")}, 0, {}},
        {"short of a kind", {REG_BINARY, std::string("\x04\x00", 2)}, 0, {}},
        {"no binary data", {REG_BINARY, ""}, 0, {}},
        {"short of its row", {REG_BINARY, KindOnly(KTVT_DOUBLE) + "1234"}, 0, {}},
        {"beyond its row", {REG_BINARY, Binary(KTVT_INT, 7) + "x"}, 0, {}},
        {"blob short of its count", {REG_BINARY, Binary(KTVT_BLOB, 10u) + "abcd"}, 0, {}},
        {"blob beyond its count", {REG_BINARY, Binary(KTVT_BLOB, 1u) + "ab"}, 0, {}},
        {"blob with a count that wraps", {REG_BINARY, Binary(KTVT_BLOB, 0xFFFFFFFFu) + "abcd"}, 0, {}},
        {"text as binary", {REG_BINARY, KindOnly(KTVT_STR) + Text("x")}, 0, {}},
        {"object", {REG_BINARY, Binary(KTVT_OBJECT, 0ull)}, 0, {}},
        {"unknown kind", {REG_BINARY, Binary(99u, 0u)}, 0, {}},
        {"never written", kAbsent, 0, {}},
    };
    for (const auto& row : rows)
        if (!(row.stored == kAbsent))
            SetRaw(row.name, row.stored);
    const RegistryContent before = Content();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CKTVariant value(17);
        EXPECT_EQ(tree->GetValue(row.name, &value), row.found);
        EXPECT_EQ(value, row.read);
    }
    EXPECT_EQ(Content(), before);
}

TEST_F(RegistryParamTest, ValueNamesAreTheRegistrysOwn) {
    Set(tree.get(), "a\\b", CKTVariant(1));
    Set(tree.get(), "", CKTVariant("unnamed"));
    Set(tree.get(), "@", CKTVariant(2));
    Set(tree.get(), "Name", CKTVariant(3));
    Set(tree.get(), "NAME", CKTVariant(4));
    EXPECT_EQ(Listed(Content(), Entry::kKey), Names{""});
    EXPECT_EQ(Raw("a\\b"), (RawValue{REG_BINARY, Binary(KTVT_INT, 1)}));
    EXPECT_EQ(Raw(nullptr), (RawValue{REG_SZ, Text("unnamed")}));
    EXPECT_EQ(ValueAt(tree.get(), nullptr), CKTVariant("unnamed"));
    EXPECT_EQ(ValueAt(tree.get(), "name"), CKTVariant(4));
    EXPECT_EQ(Listed(Content(), Entry::kValue), (Names{"|", "|@", "|Name", "|a\\b"}));
    EXPECT_EQ(ValueNames(tree.get()), RawValueNames(raw));

    // A name longer than a key's may be is listed, and cleared.
    const std::string longName(600, 'n');
    Set(tree.get(), longName.c_str(), CKTVariant(5));
    const Names listed = ValueNames(tree.get());
    EXPECT_NE(std::find(listed.begin(), listed.end(), longName), listed.end());
    tree->Clear();
    EXPECT_EQ(Listed(Content(), Entry::kValue), Names{});
}

TEST_F(RegistryParamTest, SectionsAreSubKeys) {
    EXPECT_EQ(tree->GetSection("a\\b", 0), nullptr);
    EXPECT_EQ(Listed(Content(), Entry::kKey), Names{""});
    Ref<IParam> b(tree->GetSection("a\\b", 1));
    ASSERT_NE(b, nullptr);
    Set(b.get(), "v", CKTVariant(1));
    EXPECT_EQ(Listed(Content(), Entry::kValue), Names{"\\a\\b|v"});

    // CreateSection of a key with content empties it, down to its leaves,
    // and gives an object on it.
    Ref<IParam> c(tree->GetSection("a\\b\\c", 1));
    Set(c.get(), "w", CKTVariant(2));
    Set(tree.get(), "a\\x", CKTVariant(3));  // a value named so, in the root
    Ref<IParam> a(tree->CreateSection("a"));
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(Listed(Content(), Entry::kKey), (Names{"", "\\a", "\\a\\b", "\\a\\b\\c"}));
    Set(a.get(), "new", CKTVariant(4));
    EXPECT_EQ(Listed(Content(), Entry::kValue), (Names{"\\a|new", "|a\\x"}));

    // DeleteSection takes the whole branch at its path, and nothing beside.
    Set(c.get(), "w", CKTVariant(2));
    tree->CreateSection("beside")->Release();
    tree->DeleteSection("a\\b");
    EXPECT_EQ(Listed(Content(), Entry::kKey), (Names{"", "\\a", "\\beside"}));
    EXPECT_EQ(Listed(Content(), Entry::kValue), (Names{"\\a|new", "|a\\x"}));
    EXPECT_EQ(ValueAt(c.get(), "w").vt, kMissing);  // an object on a key that went stays safe
    tree->DeleteSection("missing");

    // The empty path, and the null one, is the key itself: a new object on
    // it, emptied by CreateSection, removed by DeleteSection.
    Ref<IParam> same(tree->GetSection(nullptr, 0));
    ASSERT_NE(same, nullptr);
    Set(same.get(), "same", CKTVariant(5));
    EXPECT_EQ(Raw("same"), (RawValue{REG_BINARY, Binary(KTVT_INT, 5)}));
    Ref<IParam> emptied(a->CreateSection(""));
    ASSERT_NE(emptied, nullptr);
    EXPECT_EQ(Listed(Content(), Entry::kValue), (Names{"|a\\x", "|same"}));
    Ref<IParam>(tree->GetSection("beside\\leaf", 1))->DeleteSection(nullptr);
    a->DeleteSection("");
    EXPECT_EQ(Listed(Content(), Entry::kKey), (Names{"", "\\beside"}));
    ASSERT_NE(Ref<IParam>(tree->GetSection("", 0)), nullptr);
}

TEST_F(RegistryParamTest, ClearEmptiesSubKeysAndKeepsThem) {
    Set(Ref<IParam>(tree->CreateSection("a\\b\\c")).get(), "v", CKTVariant(1));
    Set(Ref<IParam>(tree->GetSection("a", 0)).get(), "w", CKTVariant(2));
    Set(tree.get(), "root", CKTVariant(3));
    tree->CreateSection("z")->Release();
    tree->Clear();
    EXPECT_EQ(Listed(Content(), Entry::kKey), (Names{"", "\\a", "\\a\\b", "\\a\\b\\c", "\\z"}));
    EXPECT_EQ(Listed(Content(), Entry::kValue), Names{});
    tree->DeleteAllSections();
    EXPECT_EQ(Listed(Content(), Entry::kKey), Names{""});
}

// The listings are taken once: later changes are not seen, and a walk that
// deletes what it lists, or that outlives its key, is safe.
TEST_F(RegistryParamTest, ListingsAreSnapshotsInTheRegistrysOrder) {
    constexpr int kValues = 10;
    for (int i = 0; i < kValues; ++i)
        Set(tree.get(), ("v" + std::to_string(i)).c_str(), CKTVariant(i));
    const Names inRegistryOrder = RawValueNames(raw);
    ASSERT_EQ(inRegistryOrder.size(), static_cast<size_t>(kValues));

    Ref<IParam> other(new_IParamCUReg(path.c_str()));
    Ref<CTEnum<const char*>> names(other->EnumValues());
    other.reset();
    Set(tree.get(), "later", CKTVariant(1));
    const char* batch[3] = {};
    ULONG fetched = 99;
    EXPECT_EQ(names->Next(0, batch, &fetched), 1);
    EXPECT_EQ(fetched, 0u);
    Names walked;
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

// A missing key is not made; a null or empty sub-key is the root itself.
TEST_F(RegistryParamTest, RootsOpenExistingKeysAndAnswerTwoInterfaces) {
    const std::wstring missing = path + L"\\missing";
    EXPECT_EQ(new_IParamCUReg(missing.c_str()), nullptr);
    EXPECT_EQ(new_IParamLMReg(missing.c_str()), nullptr);
    EXPECT_EQ(Listed(Content(), Entry::kKey), Names{""});
    Ref<IParam> user(new_IParamCUReg(nullptr));
    ASSERT_NE(user, nullptr);
    EXPECT_NE(Ref<IParam>(user->GetSection(std::string(path.begin(), path.end()).c_str(), 0)), nullptr);
    EXPECT_NE(Ref<IParam>(new_IParamLMReg(L"")), nullptr);

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

// The key `locked`, readable and not writable by anyone until the end. The
// handle taken before keeps its rights, to give the key back its access.
class ReadOnlyKey {
public:
    ReadOnlyKey(HKEY parent, const char* name) {
        EXPECT_EQ(RegOpenKeyExA(parent, name, 0, KEY_ALL_ACCESS, &key), ERROR_SUCCESS);
        SetAccess("D:(A;;KR;;;WD)");
    }
    ~ReadOnlyKey() {
        SetAccess("D:(A;;KA;;;WD)");
        RegCloseKey(key);
    }

private:
    void SetAccess(const char* dacl) {
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorA(dacl, SDDL_REVISION_1, &descriptor, nullptr));
        EXPECT_EQ(RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, descriptor), ERROR_SUCCESS);
        LocalFree(descriptor);
    }
    HKEY key = nullptr;
};

TEST_F(RegistryParamTest, KeysWithoutWriteAccessAreNotOpened) {
    Set(Ref<IParam>(tree->GetSection("locked\\inner", 1)).get(), "v", CKTVariant(1));
    ReadOnlyKey locked(raw, "locked");
    const RegistryContent before = Content();
    ASSERT_EQ(before.count("\\locked\\inner|v"), 1u);

    EXPECT_EQ(new_IParamCUReg((path + L"\\locked").c_str()), nullptr);
    EXPECT_EQ(tree->GetSection("locked", 1), nullptr);
    EXPECT_EQ(tree->CreateSection("locked"), nullptr);
    tree->DeleteSection("locked");
    EXPECT_EQ(Content(), before);
}

}  // namespace
}  // namespace kt::test
