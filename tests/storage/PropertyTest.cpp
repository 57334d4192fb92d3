// Document properties of compound storages: written by name, found by an
// independent reader and a reopen; what is refused; names of one query only;
// sets of another type or unreadable, which read as absent and never crash.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "kticore/storage/Property.h"
#include "platform/OlePropertySets.h"
#include "tests/storage/IndependentReader.h"
#include "tests/storage/StorageSupport.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using kt::test::Names;
using kt::test::StorageRef;
using PropertiesRef = kt::test::Ref<IKTProperty>;

const std::string kAbsent = "<absent>";

const std::vector<std::string> kAllNames = {"App name",    "Author",  "Category",
                                            "Comments",    "Company", "Keywords",
                                            "Last Author", "Subject", "Title"};

PropertiesRef PropertiesOf(IXStorage* storage) {
    void* out = nullptr;
    EXPECT_EQ(storage->QueryInterface(typeid(IKTProperty), &out), 1);
    return PropertiesRef(static_cast<IKTProperty*>(out));
}

// The text a property reads as; kAbsent when GetProperty gives 0, the kind
// when the value is no narrow text.
std::string Get(IKTProperty* properties, const char* name) {
    CKTVariant value;
    if (!properties->GetProperty(name, &value))
        return kAbsent;
    if (value.vt != KTVT_STR)
        return "<kind " + std::to_string(value.vt) + ">";
    return value.pszVal;
}

int Set(IKTProperty* properties, const char* name, const CKTVariant& value) {
    return properties->SetProperty(name, &value);
}

// Written into a transacted storage: what its commit carries is what an
// independent reader and a reopen find; what its revert drops is gone.
TEST(StorageProperties, WrittenByNameAreWhatAnIndependentReaderAndAReopenFind) {
    const struct {
        const char* name;
        const char* independentName;  // olefile's
        CKTVariant value;
        const char* text;  // as it reads back
    } properties[] = {
        {"Title", "title", "A household book", "A household book"},
        {"Subject", "subject", "Kitchen and repairs", "Kitchen and repairs"},
        {"Author", "author", "Jane Doe", "Jane Doe"},
        {"Keywords", "keywords", "milk; plumber", "milk; plumber"},
        {"Comments", "comments", KTW("Caf\u00e9 wide"), "Caf\xe9 wide"},
        {"Last Author", "last_saved_by", "John Doe", "John Doe"},
        {"App name", "creating_application", "kticore demo", "kticore demo"},
        {"Category", "category", "Household", "Household"},
        {"Company", "company", "Doe & Doe", "Doe & Doe"},
    };
    kt::test::ScratchDirectory directory;
    const kt::test::WideString path = directory / KTW("props.stg");
    StorageRef(new_Storage(path.c_str(), 0)).reset();
    {
        StorageRef file(open_Storage(path.c_str(), 0));
        PropertiesRef written = PropertiesOf(file.get());
        for (const auto& property : properties)
            EXPECT_EQ(Set(written.get(), property.name, property.value), 1) << property.name;
        EXPECT_EQ(file->Commit(), S_OK);
        ASSERT_EQ(Set(written.get(), "Title", "Reverted"), 1);
        static_cast<CStorage*>(file.get())->Revert();
    }
    // The independent reader gives the bytes as they are, narrowed by code page 1252.
    ASSERT_EQ(GetACP(), 1252u);
    std::string expected;
    for (const auto& property : properties)
        expected += std::string(property.independentName) + "=" + property.text + "\n";
    EXPECT_EQ(kt::test::IndependentProperties(path), expected);

    StorageRef reopened(open_Storage(path.c_str(), 1));
    PropertiesRef read = PropertiesOf(reopened.get());
    for (const auto& property : properties)
        EXPECT_EQ(Get(read.get(), property.name), property.text) << property.name;
    EXPECT_EQ(Set(read.get(), "Title", "changed"), 0);  // read-only
    EXPECT_EQ(Get(read.get(), "Title"), "A household book");
}

TEST(StorageProperties, SetAndGetByName) {
    const struct {
        const char* what;
        const char* name;
        CKTVariant value;
        int written;
        std::string title;  // "Title" afterwards
        std::string read;   // `name` afterwards
    } cases[] = {
        {"narrow text", "Title", "New", 1, "New", "New"},
        {"empty text", "Title", "", 0, "Old", "Old"},
        {"empty wide text", "Title", KTW(""), 0, "Old", "Old"},
        {"no text", "Title", CKTVariant(7L), 0, "Old", "Old"},
        {"case counts", "title", "x", 0, "Old", kAbsent},
        {"unknown name", "Manager", "x", 0, "Old", kAbsent},
        {"no name", nullptr, "x", 0, "Old", kAbsent},
        {"the other set", "Company", "Acme", 1, "Old", "Acme"},
    };
    StorageRef memory(new_Storage(nullptr, 0));
    PropertiesRef properties = PropertiesOf(memory.get());
    // A refused value still makes its set, which is opened or made first; a
    // later write goes to it ("the other set").
    EXPECT_EQ(Set(properties.get(), "Company", CKTVariant(7L)), 0);
    EXPECT_EQ(kt::test::OleStreamNames(memory.get()),
              std::vector<std::string>{"\005DocumentSummaryInformation"});
    EXPECT_EQ(Get(properties.get(), "Company"), kAbsent);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ASSERT_EQ(Set(properties.get(), "Title", "Old"), 1);
        EXPECT_EQ(Set(properties.get(), c.name, c.value), c.written);
        EXPECT_EQ(Get(properties.get(), "Title"), c.title);
        EXPECT_EQ(Get(properties.get(), c.name), c.read);
    }
}

// An OLE storage without property sets, nor anything else. Its state is of
// mode 0, read-only, so that a root storage over it never commits it.
class CWithoutPropertySets final : public IStorage {
public:
    // clang-format off
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override { *out = nullptr; return E_NOINTERFACE; }
    // On the stack, outliving its references.
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* stat, DWORD) override { *stat = {}; return S_OK; }
    HRESULT STDMETHODCALLTYPE CreateStream(LPCOLESTR, DWORD, DWORD, DWORD, IStream**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OpenStream(LPCOLESTR, void*, DWORD, DWORD, IStream**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CreateStorage(LPCOLESTR, DWORD, DWORD, DWORD, IStorage**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OpenStorage(LPCOLESTR, IStorage*, DWORD, SNB, DWORD, IStorage**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CopyTo(DWORD, const IID*, SNB, IStorage*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE MoveElementTo(LPCOLESTR, IStorage*, LPCOLESTR, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumElements(DWORD, void*, DWORD, IEnumSTATSTG**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DestroyElement(LPCOLESTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RenameElement(LPCOLESTR, LPCOLESTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetElementTimes(LPCOLESTR, const FILETIME*, const FILETIME*, const FILETIME*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetClass(REFCLSID) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetStateBits(DWORD, DWORD) override { return E_NOTIMPL; }
    // clang-format on
};

// Each query makes an object with names of its own; a query without output
// makes none (none holds the platform's storage). Forgetting names keeps the
// values; an object that knows no name, emptied or over a storage without
// property sets, answers zero.
TEST(StorageProperties, EachQueryMakesAnObjectWithNamesOfItsOwn) {
    StorageRef memory(new_Storage(nullptr, 0));
    auto* ole = static_cast<IStorage*>(Storage_GetOLEStorage(memory.get()));
    const auto references = [ole] {
        ole->AddRef();
        return ole->Release();
    };
    const ULONG before = references();
    EXPECT_EQ(memory->QueryInterface(typeid(IKTProperty), nullptr), 1);
    EXPECT_EQ(references(), before);
    ole->Release();
    PropertiesRef first = PropertiesOf(memory.get()), emptied = PropertiesOf(memory.get());
    EXPECT_NE(first.get(), emptied.get());
    ASSERT_EQ(Set(first.get(), "Title", "Kept"), 1);
    EXPECT_EQ(first->RemoveName("Title"), 1);
    EXPECT_EQ(first->RemoveName("Title"), 0);
    // The enumerator keeps the names after its object is gone.
    CTEnum<const char*>* names = first->EnumProperties();
    first.reset();
    std::vector<std::string> left = Names(names), expected = kAllNames;
    expected.erase(std::find(expected.begin(), expected.end(), "Title"));
    std::sort(left.begin(), left.end());
    EXPECT_EQ(left, expected);

    emptied->RemoveAllNames();
    CWithoutPropertySets withoutSets;
    StorageRef bare(new_StorageByOleStorage(&withoutSets));
    PropertiesRef none = PropertiesOf(bare.get());
    for (IKTProperty* properties : {emptied.get(), none.get()}) {
        EXPECT_EQ(Names(properties->EnumProperties()), std::vector<std::string>{});
        for (const std::string& name : kAllNames) {
            EXPECT_EQ(Get(properties, name.c_str()), kAbsent) << name;
            EXPECT_EQ(Set(properties, name.c_str(), "x"), 0) << name;
            EXPECT_EQ(properties->RemoveName(name.c_str()), 0) << name;
        }
    }
    EXPECT_EQ(Get(PropertiesOf(memory.get()).get(), "Title"), "Kept");
}

// Values of types the library does not handle beside one it does, written
// with the platform's own calls into a set of narrow text (Wine 8 cuts short
// a narrow text written into a set of 16-bit text); and a set the platform
// cannot open. Both read as absent and are written anew.
TEST(StorageProperties, OtherTypesAndUnreadableSetsReadAsAbsentAndAreReplacedByText) {
    StorageRef memory(new_Storage(nullptr, 0));
    {
        auto* ole = static_cast<IStorage*>(Storage_GetOLEStorage(memory.get()));
        IPropertySetStorage* sets = kt::sys::PropertySetsOf(ole);
        ole->Release();
        IPropertyStorage* summary = nullptr;
        ASSERT_EQ(kt::sys::CreatePropertySet(sets, kt::sys::PropertySet::Summary, &summary), S_OK);
        sets->Release();
        wchar_t wide[] = L"wide title";
        char narrow[] = "narrow author";
        // Title, Subject and Author.
        PROPSPEC specs[3] = {{PRSPEC_PROPID, {2}}, {PRSPEC_PROPID, {3}}, {PRSPEC_PROPID, {4}}};
        PROPVARIANT values[3] = {};
        values[0].vt = VT_LPWSTR;
        values[0].pwszVal = wide;
        values[1].vt = VT_I4;
        values[1].lVal = 42;
        values[2].vt = VT_LPSTR;
        values[2].pszVal = narrow;
        EXPECT_EQ(summary->WriteMultiple(3, specs, values, 2), S_OK);
        EXPECT_EQ(summary->Commit(STGC_DEFAULT), S_OK);
        summary->Release();
    }
    kt::test::WriteText(memory.get(), "\005DocumentSummaryInformation", "no property set");
    PropertiesRef properties = PropertiesOf(memory.get());
    EXPECT_EQ(Get(properties.get(), "Author"), "narrow author");
    for (const char* name : {"Title", "Subject", "Company"}) {
        EXPECT_EQ(Get(properties.get(), name), kAbsent) << name;
        EXPECT_EQ(Set(properties.get(), name, "now text"), 1) << name;
        EXPECT_EQ(Get(properties.get(), name), "now text") << name;
    }
}

}  // namespace
