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

// A registry value as the platform gives it: its type, then its bytes.
struct RawValue {
    DWORD type;
    std::string bytes;
    bool operator==(const RawValue& other) const { return type == other.type && bytes == other.bytes; }
};
const RawValue kAbsent{REG_NONE, "absent"};

// What the registry holds below a key: "path" for every key (with no data),
// "path|name" for every value.
using RegistryContent = std::map<std::string, RawValue>;

void ReadContent(HKEY key, const std::string& path, RegistryContent& content) {
    content[path];
    char name[16384];
    BYTE data[4096];
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = sizeof name, dataSize = sizeof data, type = 0;
        if (RegEnumValueA(key, index, name, &nameSize, nullptr, &type, data, &dataSize) != ERROR_SUCCESS)
            break;
        content[path + "|" + name] = {type, std::string(reinterpret_cast<char*>(data), dataSize)};
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
        ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                  nullptr, &raw, nullptr),
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
    // The key paths, or the value names ("path|name"), of the content.
    Names Keys() { return Listed(false); }
    Names Values() { return Listed(true); }
    Names Listed(bool values) {
        Names listed;
        for (const auto& item : Content())
            if ((item.first.find('|') != std::string::npos) == values)
                listed.push_back(item.first);
        return listed;
    }
    RawValue Raw(const std::string& name) {
        const RegistryContent content = Content();
        const auto found = content.find("|" + name);
        return found != content.end() ? found->second : kAbsent;
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
// what it reads back. Kinds without a form leave the registry alone.
TEST_F(RegistryParamTest, EveryKindLiesInItsLayoutAndReadsBack) {
    const CKTVariant longBlob = Blob(300);  // longer than a first read takes
    const std::string longText(1000, 't');
    const unsigned short word = 60000;
    const tagRRECT rrect{0.5, 0.25, 10.5, 20.75};
    const struct {
        const char* name;
        CKTVariant value;
        std::string bytes;
        DWORD type = REG_BINARY;
    } rows[] = {
        {"empty", CKTVariant(), KindOnly(KTVT_EMPTY)},
        {"bool", CKTVariant(1, KTVT_BOOL), Binary(KTVT_BOOL, 1u)},
        {"byte", CKTVariant(static_cast<unsigned char>(200)), Binary(KTVT_BYTE, '\xC8')},
        {"word", CKTVariant(word), Binary(KTVT_WORD, word)},
        {"ulong", CKTVariant(4000000000ul), Binary(KTVT_ULONG, 4000000000u)},
        {"int", CKTVariant(-123456), Binary(KTVT_INT, -123456)},
        {"uint", CKTVariant(3000000000u), Binary(KTVT_UINT, 3000000000u)},
        {"long", Typed(CKTVariant(-7), KTVT_LONG), Binary(KTVT_LONG, -7)},
        {"double", CKTVariant(-1234.5678901234), Binary(KTVT_DOUBLE, -1234.5678901234)},
        {"float", CKTVariant(3.25f), Binary(KTVT_FLOAT, 3.25f)},
        {"size", CKTVariant(tagSIZE{640, -480}), Binary(KTVT_SIZE, tagSIZE{640, -480})},
        {"rsize", CKTVariant(tagRSIZE{1.25, 2e-3}), Binary(KTVT_RSIZE, tagRSIZE{1.25, 2e-3})},
        {"point", CKTVariant(tagPOINT{-1, 1}), Binary(KTVT_POINT, tagPOINT{-1, 1})},
        {"rpoint", CKTVariant(tagRPOINT{1e10, -0.5}), Binary(KTVT_RPOINT, tagRPOINT{1e10, -0.5})},
        {"rect", CKTVariant(tagRECT{1, 2, 300, 400}), Binary(KTVT_RECT, tagRECT{1, 2, 300, 400})},
        {"rrect", CKTVariant(rrect), Binary(KTVT_RRECT, rrect)},
        {"blob", Blob(3), Binary(KTVT_BLOB, 3u) + std::string("\x00\x07\x0E", 3)},
        {"long blob", longBlob, Binary(KTVT_BLOB, 300u) + BlobBytes(longBlob)},
        {"no bytes", Blob(0), Binary(KTVT_BLOB, 0u)},
        {"text", CKTVariant("some text"), Text("some text"), REG_SZ},
        {"no text", CKTVariant(""), Text(""), REG_SZ},
        {"long text", CKTVariant(longText.c_str()), Text(longText.c_str()), REG_SZ},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        tree->SetValue(row.name, &row.value);
        EXPECT_EQ(Raw(row.name), (RawValue{row.type, row.bytes}));
        EXPECT_EQ(ValueAt(tree.get(), row.name), row.value);
    }

    tagKTVARIANT noData{};  // a blob that counts bytes it has not is kept as none
    noData.vt = KTVT_BLOB;
    noData.blobVal.size = 5;
    tree->SetValue("no data", &noData);
    EXPECT_EQ(Raw("no data"), (RawValue{REG_BINARY, Binary(KTVT_BLOB, 0u)}));

    Ref<IParam> object(new_MemParam());
    const RegistryContent before = Content();
    for (const CKTVariant& formless : {CKTVariant(object.get()), Typed(CKTVariant(), KTVT_WSTR + 1),
                                       Typed(CKTVariant(5), KTVT_BORROWED | KTVT_INT)}) {
        tree->SetValue("int", &formless);
        tree->SetValue("new", &formless);
    }
    EXPECT_EQ(Content(), before);
}

// Wide text is written wide, so that no character is lost to the code page,
// and reads back as narrow text.
TEST_F(RegistryParamTest, WideTextIsWrittenWideAndReadNarrow) {
    const std::wstring text = L"\u0F00 wide";  // in no ANSI code page
    Set(tree.get(), "wide", CKTVariant(text.c_str()));
    wchar_t stored[64];
    DWORD size = sizeof stored;
    ASSERT_EQ(RegGetValueW(raw, nullptr, L"wide", RRF_RT_REG_SZ, nullptr, stored, &size), ERROR_SUCCESS);
    EXPECT_EQ(std::wstring(stored, size / sizeof(wchar_t)), text + L'\0');
    Set(tree.get(), "plain", CKTVariant(KTW("wide text")));
    EXPECT_EQ(ValueAt(tree.get(), "plain"), CKTVariant("wide text"));
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
    for (const char* name : {"a\\b", "", "@", "Name", "NAME"})
        Set(tree.get(), name, CKTVariant(name));
    EXPECT_EQ(Keys(), Names{""});
    EXPECT_EQ(Values(), (Names{"|", "|@", "|Name", "|a\\b"}));
    EXPECT_EQ(ValueAt(tree.get(), nullptr), CKTVariant(""));

    // A name longer than a key's may be is listed, and cleared.
    const std::string longName(600, 'n');
    Set(tree.get(), longName.c_str(), CKTVariant(5));
    const Names listed = ValueNames(tree.get());
    EXPECT_NE(std::find(listed.begin(), listed.end(), longName), listed.end());
    tree->Clear();
    EXPECT_EQ(Values(), Names{});
}

TEST_F(RegistryParamTest, SectionsAreSubKeys) {
    EXPECT_EQ(tree->GetSection("a\\b", 0), nullptr);
    EXPECT_EQ(Keys(), Names{""});
    Ref<IParam> c(tree->GetSection("a\\b\\c", 1));
    ASSERT_NE(c, nullptr);
    Set(tree.get(), "a\\x", CKTVariant(3));  // a value named so, in the root
    tree->CreateSection("beside")->Release();

    // CreateSection gives an object on a key that exists; Clear empties the
    // branch down to its leaves, and keeps it.
    Ref<IParam> a(tree->CreateSection("a"));
    ASSERT_NE(a, nullptr);
    Set(c.get(), "w", CKTVariant(2));
    tree->Clear();
    EXPECT_EQ(Keys(), (Names{"", "\\a", "\\a\\b", "\\a\\b\\c", "\\beside"}));
    EXPECT_EQ(Values(), Names{});

    // DeleteSection takes the whole branch at its path, and nothing beside.
    Set(a.get(), "new", CKTVariant(4));
    Set(c.get(), "w", CKTVariant(2));
    tree->DeleteSection("a\\b");
    EXPECT_EQ(Keys(), (Names{"", "\\a", "\\beside"}));
    EXPECT_EQ(Values(), Names{"\\a|new"});
    EXPECT_EQ(ValueAt(c.get(), "w").vt, kMissing);  // an object on a key that went stays safe
    tree->DeleteSection("missing");

    // The empty path, and the null one, is the key itself: a new object on
    // it, emptied by CreateSection, removed by DeleteSection.
    Ref<IParam> same(tree->GetSection(nullptr, 0));
    ASSERT_NE(same, nullptr);
    Set(same.get(), "same", CKTVariant(5));
    EXPECT_EQ(Raw("same"), (RawValue{REG_BINARY, Binary(KTVT_INT, 5)}));
    ASSERT_NE(Ref<IParam>(a->CreateSection("")), nullptr);
    EXPECT_EQ(Values(), Names{"|same"});
    Ref<IParam>(tree->GetSection("beside\\leaf", 1))->DeleteSection(nullptr);
    a->DeleteSection("");
    EXPECT_EQ(Keys(), (Names{"", "\\beside"}));
    tree->DeleteAllSections();
    EXPECT_EQ(Keys(), Names{""});
}

// The listings are taken once: later changes are not seen, and a walk that
// deletes what it lists, or that outlives its key, is safe.
TEST_F(RegistryParamTest, ListingsAreSnapshots) {
    Names written;
    for (int i = 0; i < 10; ++i) {
        written.push_back("v" + std::to_string(i));
        Set(tree.get(), written.back().c_str(), CKTVariant(i));
    }
    Ref<IParam> other(new_IParamCUReg(path.c_str()));
    Ref<CTEnum<const char*>> names(other->EnumValues());
    other.reset();
    Set(tree.get(), "later", CKTVariant(1));
    const char* batch[3] = {};
    Names walked;
    ULONG fetched = 99;
    for (; names->Next(3, batch, &fetched); fetched = 99)
        for (ULONG i = 0; i < fetched; ++i) {
            walked.push_back(batch[i]);
            tree->DeleteValue(batch[i]);
        }
    EXPECT_EQ(fetched, 99u);  // the end leaves the count alone
    std::sort(walked.begin(), walked.end());
    EXPECT_EQ(walked, written);
    EXPECT_EQ(Values(), Names{"|later"});

    names->Reset();
    names->Skip(8);
    EXPECT_EQ(names->Next(3, batch, &fetched), 1);
    EXPECT_EQ(fetched, 2u);
    names->Skip(0xFFFFFFFF);  // past the end, not round to the start
    EXPECT_EQ(names->Next(1, batch, nullptr), 0);
}

// A missing key, or one that everyone may read and nobody write, is neither
// opened nor made; a null or empty sub-key is the root itself. The handle
// taken before the lock keeps its rights, to give access back.
TEST_F(RegistryParamTest, RootsOpenOnlyExistingWritableKeysAndAnswerTwoInterfaces) {
    Set(Ref<IParam>(tree->GetSection("locked\\inner", 1)).get(), "v", CKTVariant(1));
    HKEY locked;
    ASSERT_EQ(RegOpenKeyExA(raw, "locked", 0, KEY_ALL_ACCESS, &locked), ERROR_SUCCESS);
    const auto setAccess = [locked](const char* dacl) {
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorA(dacl, SDDL_REVISION_1, &descriptor,
                                                                         nullptr));
        EXPECT_EQ(RegSetKeySecurity(locked, DACL_SECURITY_INFORMATION, descriptor), ERROR_SUCCESS);
        LocalFree(descriptor);
    };
    setAccess("D:(A;;KR;;;WD)");
    const RegistryContent before = Content();
    EXPECT_EQ(before.count("\\locked\\inner|v"), 1u);
    for (const wchar_t* sub : {L"\\missing", L"\\locked"})
        EXPECT_EQ(new_IParamCUReg((path + sub).c_str()), nullptr);
    EXPECT_EQ(new_IParamLMReg((path + L"\\missing").c_str()), nullptr);
    EXPECT_EQ(tree->GetSection("locked", 1), nullptr);
    EXPECT_EQ(tree->CreateSection("locked"), nullptr);
    tree->DeleteSection("locked");
    EXPECT_EQ(Content(), before);
    setAccess("D:(A;;KA;;;WD)");
    RegCloseKey(locked);

    Ref<IParam> user(new_IParamCUReg(nullptr));
    ASSERT_NE(user, nullptr);
    EXPECT_NE(Ref<IParam>(user->GetSection(std::string(path.begin(), path.end()).c_str(), 0)), nullptr);
    EXPECT_NE(Ref<IParam>(new_IParamLMReg(L"")), nullptr);
    void* answer = nullptr;
    ASSERT_EQ(tree->QueryInterface(typeid(IParam), &answer), 1);
    EXPECT_EQ(answer, tree.get());
    tree->Release();
    EXPECT_EQ(tree->QueryInterface(typeid(IRegisterIface), nullptr), 1);
}

}  // namespace
}  // namespace kt::test
